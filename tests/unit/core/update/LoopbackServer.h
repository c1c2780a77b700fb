// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QTcpServer>
#include <QUrl>
#include <functional>
#include <memory>
#include <vector>

class QTcpSocket;

namespace ambrel {

// An HTTP server on 127.0.0.1 that answers every request as the test says.
class LoopbackServer {
 public:
  // `answer` gets the socket of each request once the request is there, whole.
  using Answering = std::function<void(QTcpSocket&)>;
  explicit LoopbackServer(Answering answer,
                          std::unique_ptr<QTcpServer> server = std::make_unique<QTcpServer>());

  QUrl address(const QString& scheme = QStringLiteral("http")) const;
  const std::vector<QByteArray>& requests() const { return _requests; }

 private:
  void serve(QTcpSocket* socket);

  Answering _answer;
  std::unique_ptr<QTcpServer> _server;
  std::vector<QByteArray> _requests;
};

// Sends a whole answer and closes.
LoopbackServer::Answering answering(int status, const QByteArray& body, const QByteArray& headers = {});

}  // namespace ambrel
