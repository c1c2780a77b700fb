// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>

#include "core/platform/Pipe.h"

namespace ambrel {
namespace {

bool isOpen(int descriptor) {
  return ::fcntl(descriptor, F_GETFD) >= 0;
}

Pipe openedPipe() {
  Result<Pipe> made = makePipe();
  EXPECT_TRUE(made.ok()) << made.error().toStdString();
  return std::move(made).value();
}

TEST(Pipe, CarriesBytesFromOneEndToTheOther) {
  const Pipe pipe = openedPipe();
  ASSERT_EQ(::write(pipe.writeEnd.descriptor(), "abc", 3), 3);
  char read[8] = {};
  ASSERT_EQ(::read(pipe.readEnd.descriptor(), read, sizeof read), 3);
  EXPECT_EQ(std::string_view(read, 3), "abc");
}

TEST(Pipe, IsNotInheritedByAStartedProgram) {
  const Pipe pipe = openedPipe();
  for (const PipeEnd* end : {&pipe.readEnd, &pipe.writeEnd}) {
    EXPECT_TRUE(::fcntl(end->descriptor(), F_GETFD) & FD_CLOEXEC);
  }
}

TEST(Pipe, KeepsOffTheStandardDescriptors) {
  const int savedInput = ::dup(STDIN_FILENO);
  ::close(STDIN_FILENO);
  const Pipe pipe = openedPipe();
  EXPECT_GT(pipe.readEnd.descriptor(), STDERR_FILENO);
  EXPECT_GT(pipe.writeEnd.descriptor(), STDERR_FILENO);
  EXPECT_FALSE(isOpen(STDIN_FILENO)) << "the lower copy stays open";
  if (savedInput >= 0) {
    ::dup2(savedInput, STDIN_FILENO);
    ::close(savedInput);
  }
}

TEST(Pipe, FailsWithTheSystemsReasonWhenNoDescriptorIsLeft) {
  rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit none = before;
  none.rlim_cur = 0;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const Result<Pipe> made = makePipe();
  ::setrlimit(RLIMIT_NOFILE, &before);
  ASSERT_FALSE(made.ok());
  EXPECT_EQ(made.error(), "Too many open files");
}

TEST(PipeEnd, IsClosedWithItsOwner) {
  int descriptor = -1;
  {
    const Pipe pipe = openedPipe();
    descriptor = pipe.readEnd.descriptor();
    EXPECT_TRUE(isOpen(descriptor));
  }
  EXPECT_FALSE(isOpen(descriptor));
}

TEST(PipeEnd, HasOneOwner) {
  Pipe pipe = openedPipe();
  const int descriptor = pipe.readEnd.descriptor();
  const int replaced = pipe.writeEnd.descriptor();
  pipe.writeEnd = std::move(pipe.readEnd);
  EXPECT_FALSE(isOpen(replaced));
  EXPECT_TRUE(isOpen(descriptor));
  EXPECT_EQ(pipe.writeEnd.descriptor(), descriptor);
  pipe.writeEnd.close();
  pipe.writeEnd.close();
  EXPECT_FALSE(isOpen(descriptor));
  EXPECT_FALSE(pipe.writeEnd.isOpen());
}

TEST(PipeEnd, StopsWaitingOnItsOwnSideOnly) {
  Pipe pipe = openedPipe();
  pipe.readEnd.stopWaiting();
  char byte = 0;
  EXPECT_EQ(::read(pipe.readEnd.descriptor(), &byte, 1), -1);
  EXPECT_EQ(errno, EAGAIN);
  EXPECT_FALSE(::fcntl(pipe.writeEnd.descriptor(), F_GETFL) & O_NONBLOCK);
}

}  // namespace
}  // namespace ambrel
