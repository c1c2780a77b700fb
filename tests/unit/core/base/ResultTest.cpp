// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <memory>

#include "core/base/Result.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

TEST(Result, HoldsAValue) {
  const Result<int> result = 7;
  EXPECT_TRUE(result.ok());
  EXPECT_TRUE(static_cast<bool>(result));
  EXPECT_EQ(result.value(), 7);
  EXPECT_EQ(result.error(), "");
}

TEST(Result, HoldsTheSentenceThatSaysWhyThereIsNone) {
  const Result<int> result = Failure{"The disk is full."};
  EXPECT_FALSE(result.ok());
  EXPECT_FALSE(static_cast<bool>(result));
  EXPECT_EQ(result.error(), "The disk is full.");
}

TEST(Result, TellsATextFromAFailure) {
  EXPECT_EQ(Result<QString>(QString("text")).value(), "text");
  EXPECT_FALSE(Result<QString>(Failure{"text"}).ok());
}

TEST(Result, HandsOverAValueThatCannotBeCopied) {
  Result<std::unique_ptr<int>> result = std::make_unique<int>(7);
  const std::unique_ptr<int> taken = std::move(result).value();
  EXPECT_EQ(*taken, 7);
}

TEST(Result, OfNothingSucceedsOrFails) {
  const Result<void> done;
  const Result<void> failed = Failure{"no"};
  EXPECT_TRUE(done.ok());
  EXPECT_EQ(done.error(), "");
  EXPECT_FALSE(failed.ok());
  EXPECT_EQ(failed.error(), "no");
}

TEST(Result, FailsEvenWithAnEmptySentence) {
  EXPECT_FALSE(Result<void>(Failure{{}}).ok());
  EXPECT_FALSE(Result<int>(Failure{{}}).ok());
}

}  // namespace
}  // namespace ambrel
