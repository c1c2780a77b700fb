// SPDX-License-Identifier: Apache-2.0
#include "core/backup/QueueFile.h"

#include <QFile>
#include <QSet>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <plist/plist.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/base/Text.h"

namespace ambrel {
namespace {

// The one document type that property lists bear. It names no entities.
constexpr const char* kDocumentType =
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">";

struct NodeDeleter {
  void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

struct TextDeleter {
  void operator()(char* text) const { std::free(text); }
};

Failure notAQueue() {
  return Failure{QStringLiteral("Not a property list of paths")};
}

// Looked for before any parser sees the bytes: entities that multiply, and containers nested so deeply that
// walking or freeing them overflows the stack.
bool isHarmless(const QByteArray& bytes) {
  return !bytes.contains('\0') && !bytes.contains("<!DOCTYPE") && !bytes.contains("<!ENTITY") &&
         bytes.count("<array") <= 1 && !bytes.contains("<dict");
}

bool isUsable(const QString& path) {
  return path.startsWith(QLatin1Char('/'));
}

QStringList pathsIn(plist_t array) {
  QStringList paths;
  QSet<QString> known;
  plist_array_iter walk = nullptr;
  plist_array_new_iter(array, &walk);
  const std::unique_ptr<void, decltype(&std::free)> owner(walk, &std::free);
  plist_t item = nullptr;
  for (plist_array_next_item(array, walk, &item); item; plist_array_next_item(array, walk, &item)) {
    if (plist_get_node_type(item) != PLIST_STRING) continue;
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(item, &length);
    const QString path = text ? std_to_ns({text, static_cast<std::size_t>(length)}) : QString();
    if (!isUsable(path) || known.contains(path)) continue;
    known.insert(path);
    paths.append(path);
  }
  return paths;
}

}  // namespace

QByteArray encodeQueue(const QStringList& paths) {
  const Node array(plist_new_array());
  for (const QString& path : paths)
    plist_array_append_item(array.get(), plist_new_string(path.toUtf8().constData()));
  char* text = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(array.get(), &text, &length);
  const std::unique_ptr<char, TextDeleter> owner(text);
  return {text, static_cast<qsizetype>(length)};
}

Result<QStringList> decodeQueue(QByteArray bytes) {
  if (bytes.size() > kMaxQueueFileBytes) return notAQueue();
  if (const qsizetype start = bytes.indexOf(kDocumentType); start >= 0) {
    bytes.remove(start, static_cast<qsizetype>(qstrlen(kDocumentType)));
  }
  if (!isHarmless(bytes)) return notAQueue();
  plist_t root = nullptr;
  plist_from_xml(bytes.constData(), static_cast<std::uint32_t>(bytes.size()), &root);
  const Node owner(root);
  if (!root || plist_get_node_type(root) != PLIST_ARRAY) return notAQueue();
  return pathsIn(root);
}

namespace {

// None when the disk does not answer. What is no file, or too big for a queue, has bytes that are none.
std::optional<QByteArray> bytesOf(const QString& path) {
  // Without O_NONBLOCK a FIFO of that name would hold the launch up for ever.
  const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return std::nullopt;
  QFile file;
  struct stat status = {};
  const bool known = ::fstat(descriptor, &status) == 0;
  if (!file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle)) {
    ::close(descriptor);
    return std::nullopt;
  }
  if (!known) return std::nullopt;
  if (!S_ISREG(status.st_mode) || status.st_size > kMaxQueueFileBytes) return QByteArray();
  QByteArray bytes = file.read(kMaxQueueFileBytes + 1);
  return file.error() == QFileDevice::NoError ? std::optional(bytes) : std::nullopt;
}

}  // namespace

QueueFile loadQueueFile(const QString& path) {
  if (pathIsMissing(ns_to_path(path))) return {};
  std::optional<QByteArray> bytes = bytesOf(path);
  // A network home may answer the first call after a pause with an error, and the next one properly.
  if (!bytes) bytes = bytesOf(path);
  if (!bytes) return {QueueFile::State::Unreadable};
  const Result<QStringList> paths = decodeQueue(std::move(*bytes));
  if (!paths) return {QueueFile::State::Broken};
  return {QueueFile::State::Read, paths.value()};
}

QueueFile restoreQueueFile(Files& files, const QString& path) {
  const QString aside = path + QStringLiteral(".unread");
  QueueFile file = loadQueueFile(path);
  if (file.state == QueueFile::State::Unreadable) (void)files.moveWithoutOverwriting(path, aside);
  if (file.state != QueueFile::State::Read) return file;
  const QStringList unread = loadQueueFile(aside).paths;
  if (unread.isEmpty()) return file;
  file.paths = unread + file.paths;
  file.paths.removeDuplicates();
  if (files.replaceWholeUnflushed(path, encodeQueue(file.paths))) (void)files.remove(aside);
  return file;
}

Result<QStringList> readQueueFile(const QString& path) {
  const QueueFile file = loadQueueFile(path);
  return file.state == QueueFile::State::Read ? Result<QStringList>(file.paths) : notAQueue();
}

}  // namespace ambrel
