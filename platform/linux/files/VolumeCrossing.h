#pragma once

#include "platform/linux/files/ItemPlace.h"

namespace vornix {

// Moves an item into another volume: copies it beside the destination, gives the whole copy its
// name when everything has reached the disk, and removes of the source what was copied: what
// somebody changed or added since then stays there, which is EBUSY with both sides there. What
// could keep the source from being removed, as far as it can be told, is the error before anything
// is copied, and so is another volume that is mounted in it; EINVAL for a folder into itself. The
// end of the process may leave a hidden folder named
// ".vornix-moving-…" beside the destination, with what had been copied so far. EEXIST when
// something stands at the destination. Answers 0 or the system's error number.
[[nodiscard]] int moveAcrossVolumes(const ItemPlace& from, const ItemPlace& to);

}  // namespace vornix
