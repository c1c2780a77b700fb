// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/Sockets.h"
#include "support/PtpIpHost.h"

namespace ambrel::simulator {
namespace {

TEST(Sockets, TakeAFreePort) {
  const Descriptor socket = bind_loopback(0);
  ASSERT_TRUE(socket.valid());
  EXPECT_NE(port_of(socket), 0);
}

TEST(Sockets, KeepAPortWithoutListeningOnIt) {
  const Descriptor socket = bind_loopback(0);
  EXPECT_FALSE(LoopbackConnection(port_of(socket)).connected());
  EXPECT_TRUE(start_listening(socket));
  EXPECT_TRUE(LoopbackConnection(port_of(socket)).connected());
}

TEST(Sockets, LeaveAPortToWhoListensOnIt) {
  const Descriptor first = bind_loopback(0);
  ASSERT_TRUE(start_listening(first));
  EXPECT_FALSE(bind_loopback(port_of(first)).valid());
}

TEST(Sockets, AcceptNobodyWhereNobodyWaits) {
  const Descriptor listener = bind_loopback(0);
  ASSERT_TRUE(start_listening(listener));
  EXPECT_FALSE(accept_connection(listener).valid());
  const LoopbackConnection host(port_of(listener));
  EXPECT_TRUE(accept_connection(listener).valid());
}

TEST(Sockets, EndConnectionsOnClosing) {
  const Descriptor listener = bind_loopback(0);
  ASSERT_TRUE(start_listening(listener));
  LoopbackConnection host(port_of(listener));
  Descriptor accepted = accept_connection(listener);
  reset_on_close(accepted);
  accepted.reset();
  EXPECT_TRUE(host.waitClosed());
  EXPECT_FALSE(host.send(Bytes{1}));
}

}  // namespace
}  // namespace ambrel::simulator
