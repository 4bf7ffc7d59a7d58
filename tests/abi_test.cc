// What existing hosts rely on: the place of each operation in the interface. The factory's name is
// checked on the library itself.
#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>

#include "lanvoss/lanvoss.h"

namespace {

// With Visual C++ such a pointer is the address of code, which says nothing of the slot.
#if defined(__x86_64__) && !defined(_MSC_VER)

// A pointer to a virtual operation holds the offset of its slot, plus one.
template <class Operation>
std::size_t SlotOf(Operation operation) {
  std::size_t words[2];
  static_assert(sizeof(words) == sizeof(operation));
  std::memcpy(words, &operation, sizeof(words));
  return (words[0] - 1) / sizeof(void*);
}

TEST(Abi, EveryOperationKeepsItsSlot) {
  EXPECT_EQ(SlotOf(&LanvossInterface::StartWatch), 0U);
  EXPECT_EQ(SlotOf(&LanvossInterface::StopWatch), 1U);
  EXPECT_EQ(SlotOf(&LanvossInterface::GetDeviceIp), 2U);
  EXPECT_EQ(SlotOf(&LanvossInterface::AbortConnect), 3U);
  EXPECT_EQ(SlotOf(&LanvossInterface::DisConnect), 4U);
  EXPECT_EQ(SlotOf(&LanvossInterface::Unpair), 5U);
  EXPECT_EQ(SlotOf(&LanvossInterface::PingCheck), 6U);
}

#endif

}  // namespace
