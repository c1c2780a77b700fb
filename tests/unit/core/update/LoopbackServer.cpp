// SPDX-License-Identifier: Apache-2.0
#include "LoopbackServer.h"

#include <QTcpSocket>
#include <utility>

namespace ambrel {

LoopbackServer::LoopbackServer(Answering answer, std::unique_ptr<QTcpServer> server)
    : _answer(std::move(answer)), _server(std::move(server)) {
  QObject::connect(_server.get(), &QTcpServer::pendingConnectionAvailable, _server.get(), [this] {
    while (QTcpSocket* socket = _server->nextPendingConnection())
      serve(socket);
  });
  if (!_server->listen(QHostAddress::LocalHost)) qFatal("no port on loopback");
}

QUrl LoopbackServer::address(const QString& scheme) const {
  return QUrl(QStringLiteral("%1://127.0.0.1:%2").arg(scheme).arg(_server->serverPort()));
}

void LoopbackServer::serve(QTcpSocket* socket) {
  auto request = std::make_shared<QByteArray>();
  const auto read = [this, socket, request] {
    *request += socket->readAll();
    if (!request->endsWith("\r\n\r\n")) return;
    _requests.push_back(std::exchange(*request, {}));
    _answer(*socket);
  };
  QObject::connect(socket, &QTcpSocket::readyRead, _server.get(), read);
  read();
}

LoopbackServer::Answering answering(int status, const QByteArray& body, const QByteArray& headers) {
  return [=](QTcpSocket& socket) {
    socket.write("HTTP/1.1 " + QByteArray::number(status) + " Words\r\nContent-Length: " +
                 QByteArray::number(body.size()) + "\r\nConnection: close\r\n" + headers + "\r\n" + body);
    socket.disconnectFromHost();
  };
}

}  // namespace ambrel
