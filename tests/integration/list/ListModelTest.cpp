// SPDX-License-Identifier: Apache-2.0
// The list against a model that does everything the slow and plain way: 10,000 random sequences of what an
// operator can do to it. After every step both have the same rows, show the same rows in the same order with
// the same selection, and the store holds the list.
#include "integration/list/ListModelFixture.h"

namespace ambrel {
namespace {

constexpr unsigned kSequences = 2'500;  // of each of four tests, which can run side by side
constexpr int kSteps = 14;
constexpr std::size_t kMostRows = 40;

class ListModelTest : public ListModelFixture {
 protected:
  void step() {
    using Step = void (ListModelTest::*)();
    static constexpr Step kStepKinds[] = {
        &ListModelTest::paste,        &ListModelTest::addFromSearch, &ListModelTest::insertRow,
        &ListModelTest::deleteRow,    &ListModelTest::reorder,       &ListModelTest::editCell,
        &ListModelTest::editCell,     &ListModelTest::toggleMarker,  &ListModelTest::takePhoto,
        &ListModelTest::takePhoto,    &ListModelTest::search,        &ListModelTest::search,
        &ListModelTest::filterOrSort, &ListModelTest::filterOrSort,  &ListModelTest::selectInTable,
        &ListModelTest::dropFile,     &ListModelTest::import};
    const Step chosen =
        model.rows.size() > kMostRows ? &ListModelTest::import : kStepKinds[below(std::size(kStepKinds))];
    (this->*chosen)();
  }
};

TEST_P(ListModelTest, IsWhatThePlainModelIsAfterEveryStep) {
  for (unsigned seed = GetParam() * kSequences; seed < (GetParam() + 1) * kSequences; ++seed) {
    startSequence(seed);
    for (int number = 0; number < kSteps; ++number) {
      step();
      expectSameList();
      if (HasFatalFailure()) FAIL() << "sequence " << seed << ", step " << number;
    }
    expectSameAfterReload();
    if (HasFatalFailure()) FAIL() << "sequence " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(OfTenThousandSequences, ListModelTest, ::testing::Range(0U, 4U));

}  // namespace
}  // namespace ambrel
