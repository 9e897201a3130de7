// The bookkeeping of frame buffers, without registers.
#include "chip/mac/buffer_pool.h"

#include <gtest/gtest.h>

namespace chip {
namespace {

TEST(BufferPool, AtFirstHasTheReceiveBuffersInOrder) {
  BufferPool pool;
  EXPECT_EQ(pool.Free(), 240U);
  for (unsigned handle = 16; handle <= 255; ++handle) EXPECT_EQ(pool.Take(), handle);
  EXPECT_EQ(pool.Take(), std::nullopt);
  EXPECT_EQ(pool.Free(), 0U);
}

TEST(BufferPool, ABufferReturnsToItsEndAfterItsLastUse) {
  BufferPool pool;
  EXPECT_EQ(pool.Take(), 16);
  pool.Hold(16);
  pool.AddUse(16);
  pool.AddUse(16);
  EXPECT_EQ(pool.Uses(16), 3U);
  pool.EndUse(16);
  pool.GiveBack(16);
  EXPECT_FALSE(pool.Held(16));
  EXPECT_EQ(pool.Uses(16), 1U);
  EXPECT_EQ(pool.Free(), 239U);
  pool.EndUse(16);
  EXPECT_EQ(pool.Free(), 240U);
  for (unsigned handle = 17; handle <= 255; ++handle) EXPECT_EQ(pool.Take(), handle);
  EXPECT_EQ(pool.Take(), 16);
}

TEST(BufferPool, ABufferThatWasNeverTakenReturnsOnlyOnce) {
  BufferPool pool;
  pool.AddUse(255);
  pool.EndUse(255);
  EXPECT_EQ(pool.Free(), 240U);
}

TEST(BufferPool, TransmitBuffersBelongToTheSoftware) {
  BufferPool pool;
  EXPECT_EQ(pool.Uses(0), 0U);
  EXPECT_EQ(pool.Uses(1), 1U);
  EXPECT_EQ(pool.Uses(15), 1U);
  EXPECT_EQ(pool.Uses(16), 0U);
  pool.AddUse(1);
  EXPECT_EQ(pool.Uses(1), 2U);
  pool.EndUse(1);
  EXPECT_EQ(pool.Free(), 240U);
}

}  // namespace
}  // namespace chip
