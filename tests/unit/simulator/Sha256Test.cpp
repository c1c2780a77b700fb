// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/Sha256.h"

namespace ambrel::simulator {
namespace {

// The examples of FIPS 180-2.
TEST(Sha256, AgreesWithTheStandardsExamples) {
  EXPECT_EQ(sha256_hex({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(sha256_hex(Bytes{'a', 'b', 'c'}),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace
}  // namespace ambrel::simulator
