#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vornix::demo {

// A notification as the terminal shows it.
struct ReminderCard {
  std::string title;
  std::string text;
  // Action key and label, the body's own action left out.
  std::vector<std::pair<std::string, std::string>> buttons;
  bool bodyCanBeClicked = false;
};

// `actions` as the notification protocol has them: key, label, key, label.
[[nodiscard]] ReminderCard makeCard(std::string title, std::string text,
                                    const std::vector<std::string>& actions);

// A box of lines with the buttons numbered below the text.
[[nodiscard]] std::string draw(const ReminderCard& card);

// The action that a pressed key stands for: a button's number, or Enter for the body; empty for any
// other key.
[[nodiscard]] std::string actionForKey(const ReminderCard& card, char key);

// What a person calls an action: its button's label, or the title for the body's action.
[[nodiscard]] std::string labelOf(const ReminderCard& card, std::string_view action);

}  // namespace vornix::demo
