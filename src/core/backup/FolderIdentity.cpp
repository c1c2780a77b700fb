// SPDX-License-Identifier: Apache-2.0
#include "core/backup/FolderIdentity.h"

#include <QFile>
#include <algorithm>
#include <climits>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace ambrel {
namespace {

using Identity = std::pair<dev_t, ino_t>;

// The folder's own identity and those of its parents up to the root; empty when it cannot be read.
std::vector<Identity> identitiesUpwards(const QString& folder) {
  std::vector<Identity> identities;
  if (folder.isEmpty() || folder.contains(QChar::Null)) return identities;
  QByteArray path = QFile::encodeName(folder);
  while (path.size() < PATH_MAX) {
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) return identities;
    const Identity identity(status.st_dev, status.st_ino);
    if (!identities.empty() && identities.back() == identity)
      return identities;  // the root is its own parent
    identities.push_back(identity);
    path += "/..";
  }
  return identities;
}

bool contains(const std::vector<Identity>& identities, const Identity& identity) {
  return std::find(identities.begin(), identities.end(), identity) != identities.end();
}

}  // namespace

FolderRelation relationOf(const QString& folder, const QString& other) {
  const std::vector<Identity> first = identitiesUpwards(folder);
  const std::vector<Identity> second = identitiesUpwards(other);
  if (first.empty() || second.empty()) return FolderRelation::Apart;
  if (first.front() == second.front()) return FolderRelation::Same;
  if (contains(first, second.front())) return FolderRelation::Inside;
  return contains(second, first.front()) ? FolderRelation::Around : FolderRelation::Apart;
}

}  // namespace ambrel
