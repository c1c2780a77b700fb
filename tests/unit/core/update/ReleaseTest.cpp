// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/update/Release.h"

namespace ambrel {
namespace {

const QString kUnreadable = QStringLiteral("Could not read the latest version information.");

TEST(Release, ReadsTagPageAndTheFirstDiskImage) {
  const Result<Release> release = parseRelease(R"({
    "tag_name": "v8.1", "html_url": "https://example.org/r/8.1", "other": [1, {"a": null}],
    "assets": [7, null, {"name": "notes.txt", "browser_download_url": "https://example.org/notes.txt"},
               {"name": "Ambrel-8.1.DMG", "browser_download_url": "https://example.org/a.dmg"},
               {"name": "second.dmg", "browser_download_url": "https://example.org/b.dmg"}]})");
  ASSERT_TRUE(release);
  EXPECT_EQ(release.value().tag, QStringLiteral("v8.1"));
  EXPECT_EQ(release.value().diskImage, QUrl(QStringLiteral("https://example.org/a.dmg")));
  EXPECT_EQ(release.value().page, QUrl(QStringLiteral("https://example.org/r/8.1")));
}

TEST(Release, LooksAtNoLaterAssetThanTheFirstDiskImage) {
  const Result<Release> release = parseRelease(R"({"tag_name": "1", "assets": [
    {"name": "a.dmg"}, {"name": "b.dmg", "browser_download_url": "https://example.org/b.dmg"}]})");
  ASSERT_TRUE(release);
  EXPECT_TRUE(release.value().diskImage.isEmpty());
}

TEST(Release, NeedsNoAssetsAndNoPage) {
  for (const char* body :
       {R"({"tag_name": "8"})", R"({"tag_name": "8", "assets": {"name": "a.dmg"}, "html_url": 3})"}) {
    const Result<Release> release = parseRelease(body);
    ASSERT_TRUE(release) << body;
    EXPECT_EQ(release.value(), (Release{.tag = QStringLiteral("8"), .diskImage = {}})) << body;
    EXPECT_TRUE(downloadAddress(release.value()).isEmpty());
  }
}

TEST(Release, RefusesWhatIsNoReleaseInOneSentence) {
  const QByteArray deep = QByteArray(100000, '[') + QByteArray(100000, ']');
  const QByteArray deepTag = R"({"tag_name":)" + deep + "}";
  for (const QByteArray& body :
       {QByteArray(), QByteArray("no JSON"), QByteArray("[]"), QByteArray("{}"), QByteArray("\"tag_name\""),
        QByteArray(R"({"tag_name": ""})"), QByteArray(R"({"tag_name": 7})"),
        QByteArray(R"({"tag_name": null})"), QByteArray(R"({"tag_name": "v8")"),
        QByteArray("\xff\xfe{\0}\0", 6), deep, deepTag}) {
    const Result<Release> release = parseRelease(body);
    EXPECT_FALSE(release) << body.left(40).constData();
    EXPECT_EQ(release.error(), kUnreadable);
  }
}

TEST(Release, OpensTheDiskImageElseThePage) {
  const QUrl image(QStringLiteral("https://example.org/a.dmg"));
  const QUrl page(QStringLiteral("https://example.org/"));
  EXPECT_EQ(downloadAddress({QStringLiteral("8"), image, page}), image);
  EXPECT_EQ(downloadAddress({QStringLiteral("8"), QUrl(), page}), page);
}

TEST(Release, OpensNothingButHttps) {
  const QUrl page(QStringLiteral("https://example.org/"));
  for (const char* hostile :
       {"http://example.org/a.dmg", "file:///etc/passwd", "javascript:alert(1)", "https:", "a.dmg",
        "smb://example.org/a.dmg", "https:///a.dmg", "HTTPS://[broken"}) {
    const QUrl address(QString::fromLatin1(hostile));
    EXPECT_EQ(downloadAddress({QStringLiteral("8"), address, page}), page) << hostile;
    EXPECT_TRUE(downloadAddress({QStringLiteral("8"), address, address}).isEmpty()) << hostile;
  }
}

}  // namespace
}  // namespace ambrel
