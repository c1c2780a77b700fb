// SPDX-License-Identifier: Apache-2.0
#include <CoreFoundation/CoreFoundation.h>
#include <NetFS/NetFS.h>

#include "core/platform/RemountShare.h"

namespace ambrel {

bool remountShare(const QString& url, const QString&) {
  const CFStringRef text = url.toCFString();
  const CFURLRef address = CFURLCreateWithString(nullptr, text, nullptr);
  CFRelease(text);
  if (!address) return false;
  const CFMutableDictionaryRef options =
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
  CFDictionarySetValue(options, kNAUIOptionKey, kNAUIOptionNoUI);
  CFArrayRef mountPoints = nullptr;
  const int status = NetFSMountURLSync(address, nullptr, nullptr, nullptr, options, nullptr, &mountPoints);
  if (mountPoints) CFRelease(mountPoints);
  CFRelease(options);
  CFRelease(address);
  return status == 0;
}

}  // namespace ambrel
