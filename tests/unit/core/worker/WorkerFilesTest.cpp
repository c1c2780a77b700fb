// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/worker/WorkerFiles.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

class WorkerFilesTest : public ::testing::Test {
 protected:
  WorkerFilesTest() : root(folder.path()), files{Bundle(root), "/tmp/user"} {}

  QTemporaryDir folder;
  QString root;
  WorkerFiles files;
};

TEST_F(WorkerFilesTest, LieInTheBundle) {
  EXPECT_EQ(files.workerPath(), root + "/Contents/MacOS/ambrel_cpp_worker");
  EXPECT_EQ(files.sdkFrameworkRoot(), root + "/Contents/Frameworks/EDSDK/Framework");
  EXPECT_EQ(files.sdkPath(), root + "/Contents/Frameworks/EDSDK/Framework/EDSDK.framework/Versions/A/EDSDK");
}

TEST_F(WorkerFilesTest, NameAFolderForPhotosBeforeOneIsChosen) {
  EXPECT_EQ(files.unsetDownloadFolder(), "/tmp/user/AmbrelTether-unset");
}

TEST_F(WorkerFilesTest, StartTheWorkerWithFolderSdkAndSaveMode) {
  const WorkerLaunch launch = files.launch("/photos/día 1", "card");
  EXPECT_EQ(launch.program, files.workerPath());
  EXPECT_EQ(launch.arguments, (QStringList{"/photos/día 1", files.sdkPath(), "card"}));
}

TEST_F(WorkerFilesTest, StartTheWorkerBesideTheSdkLibrary) {
  const QString sdkFolder = root + "/Contents/Frameworks/EDSDK/Framework/EDSDK.framework/Versions/A";
  ASSERT_TRUE(QDir().mkpath(sdkFolder));
  EXPECT_EQ(files.launch("/photos", "both").workingDirectory, sdkFolder);
}

TEST_F(WorkerFilesTest, StartTheWorkerInItsOwnFolderWhereNoSdkIs) {
  EXPECT_EQ(files.launch("/photos", "both").workingDirectory, root + "/Contents/MacOS");
}

TEST_F(WorkerFilesTest, ExtendTheOwnEnvironmentAndReplaceInheritedValues) {
  qputenv("AMBREL_DIAG", "1");
  qputenv("AMBREL_INHERITED", "kept");
  const QProcessEnvironment environment = files.launch("/photos", "both").environment;
  qunsetenv("AMBREL_DIAG");
  qunsetenv("AMBREL_INHERITED");
  EXPECT_EQ(environment.value("DYLD_FRAMEWORK_PATH"), files.sdkFrameworkRoot());
  EXPECT_EQ(environment.value("LD_LIBRARY_PATH"), files.sdkFrameworkRoot());
  EXPECT_EQ(environment.value("AMBREL_VERBOSE_LOGS"), "0");
  EXPECT_EQ(environment.value("AMBREL_DIAG"), "0");
  EXPECT_EQ(environment.value("AMBREL_CPP_DETECT_STRATEGY"), "matrix");
  EXPECT_EQ(environment.value("AMBREL_CPP_REGISTER_STATE_HANDLER"), "1");
  EXPECT_EQ(environment.value("AMBREL_INHERITED"), "kept");
}

}  // namespace
}  // namespace ambrel
