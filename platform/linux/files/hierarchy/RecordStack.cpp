#include "platform/linux/files/hierarchy/RecordStack.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vornix {
namespace {

constexpr std::size_t kBatch = std::size_t{32} << 10U;

// A folder that was removed after it was opened holds nothing.
int resultOfReading(ssize_t length) {
  return length >= 0 || errno == ENOENT ? 0 : errno;
}

}  // namespace

int RecordStack::fill(Part& part, int folder) {
  part.next = part.end = part.begin;
  makeRoom(part.begin, kBatch);
  const ssize_t length = getdents64(folder, block_.get() + part.begin, kBatch);
  if (length > 0) part.end += static_cast<std::size_t>(length);
  return resultOfReading(length);
}

void RecordStack::fill(Part& part, std::string_view records) {
  makeRoom(part.begin, records.size());
  part.next = part.begin;
  part.end = part.begin + records.size();
  std::ranges::copy(records, block_.get() + part.begin);
}

void RecordStack::makeRoom(std::size_t begin, std::size_t size) {
  if (size_ >= begin + size) return;
  const std::size_t newSize = std::max(begin + size, begin * 2);
  auto block = std::make_unique_for_overwrite<char[]>(newSize);
  std::copy_n(block_.get(), begin, block.get());
  block_ = std::move(block);
  size_ = newSize;
}

int readRemainingRecords(int folder, std::string& records) {
  const auto batch = std::make_unique_for_overwrite<char[]>(kBatch);
  ssize_t length = 0;
  while ((length = getdents64(folder, batch.get(), kBatch)) > 0)
    records.append(batch.get(), static_cast<std::size_t>(length));
  return resultOfReading(length);
}

}  // namespace vornix
