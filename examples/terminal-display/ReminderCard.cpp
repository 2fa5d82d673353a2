#include "examples/terminal-display/ReminderCard.h"

#include <algorithm>

#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

namespace vornix::demo {
namespace {

constexpr std::size_t kWidth = 56;

std::size_t columns(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(text::decodeCharacter(text).length);
  return count;
}

std::vector<std::string> wrapped(std::string_view text) {
  std::vector<std::string> lines(1);
  for (const std::string& word : text::split(text, " ")) {
    if (!lines.back().empty() && columns(lines.back()) + 1 + columns(word) > kWidth) {
      lines.emplace_back();
    }
    lines.back() += (lines.back().empty() ? "" : " ") + word;
  }
  return lines;
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string result;
  while (times-- > 0) result += piece;
  return result;
}

std::string row(std::string_view text) {
  const std::size_t used = std::min(columns(text), kWidth);
  return "  │ " + std::string(text) + std::string(kWidth - used, ' ') + " │\n";
}

std::string buttonLine(const ReminderCard& card) {
  std::string line;
  for (std::size_t index = 0; index < card.buttons.size(); ++index) {
    line += "[" + std::to_string(index + 1) + "] " + card.buttons[index].second + "   ";
  }
  return line;
}

}  // namespace

ReminderCard makeCard(std::string title, std::string text,
                      const std::vector<std::string>& actions) {
  ReminderCard card{std::move(title), std::move(text), {}, false};
  for (std::size_t index = 0; index + 1 < actions.size(); index += 2) {
    if (actions[index] == "default") {
      card.bodyCanBeClicked = true;
    } else {
      card.buttons.emplace_back(actions[index], actions[index + 1]);
    }
  }
  return card;
}

std::string draw(const ReminderCard& card) {
  const std::string edge = repeated("─", kWidth + 2);
  std::string box = "\n  ┌" + edge + "┐\n" + row(card.title) + row("");
  for (const std::string& line : wrapped(card.text)) box += row(line);
  return box + row("") + row(buttonLine(card)) + "  └" + edge + "┘\n";
}

std::string actionForKey(const ReminderCard& card, char key) {
  if (key == '\n' || key == '\r') return card.bodyCanBeClicked ? "default" : std::string();
  const auto index = static_cast<std::size_t>(key - '1');
  return key >= '1' && index < card.buttons.size() ? card.buttons[index].first : std::string();
}

std::string labelOf(const ReminderCard& card, std::string_view action) {
  for (const auto& [key, label] : card.buttons) {
    if (key == action) return label;
  }
  return card.title;
}

}  // namespace vornix::demo
