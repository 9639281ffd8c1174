// LIST_ENTRY lists and the typed ListOf range over them.
#include <Uefi.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

struct DRIVE {
  UINT32 Id;
  LIST_ENTRY Link;
  UINT32 Slot;
};

// A list of drives on the heap, with the ids in list order.
class ListTest : public ::testing::Test {
 protected:
  void SetUp() override { InitializeListHead(&Head_); }
  void TearDown() override {
    while (!IsListEmpty(&Head_)) {
      LIST_ENTRY *Node = GetFirstNode(&Head_);
      RemoveEntryList(Node);
      delete uefi::RecordOf<&DRIVE::Link>(Node);
    }
  }

  DRIVE *Make(UINT32 Id) { return new DRIVE{Id, {}, Id * 10}; }

  std::vector<UINT32> Ids() {
    std::vector<UINT32> Result;
    for (DRIVE *Drive : uefi::ListOf<&DRIVE::Link>(Head_)) {
      Result.push_back(Drive->Id);
    }
    return Result;
  }

  LIST_ENTRY Head_;
};

TEST_F(ListTest, InsertionsKeepOrder) {
  EXPECT_TRUE(IsListEmpty(&Head_));
  EXPECT_TRUE(Ids().empty());
  InsertTailList(&Head_, &Make(2)->Link);
  InsertTailList(&Head_, &Make(3)->Link);
  InsertHeadList(&Head_, &Make(1)->Link);
  DRIVE *Last = Make(5);
  InsertTailList(&Head_, &Last->Link);
  InsertBeforeNode(&Last->Link, &Make(4)->Link);
  EXPECT_EQ(Ids(), (std::vector<UINT32>{1, 2, 3, 4, 5}));
  EXPECT_EQ(CountListEntries(&Head_), 5u);
  EXPECT_EQ(CountListEntries(&Head_, 3), 3u);
  EXPECT_TRUE(IsNodeAtEnd(&Head_, &Last->Link));
  EXPECT_TRUE(IsNull(&Head_, GetNextNode(&Head_, &Last->Link)));
  EXPECT_EQ(uefi::RecordOf<&DRIVE::Link>(GetFirstNode(&Head_))->Slot, 10u);
}

TEST_F(ListTest, RangeForAllowsRemovingTheCurrentRecord) {
  for (UINT32 Id = 1; Id <= 6; Id++) {
    InsertTailList(&Head_, &Make(Id)->Link);
  }
  std::vector<UINT32> Visited;
  for (DRIVE *Drive : uefi::ListOf<&DRIVE::Link>(Head_)) {
    Visited.push_back(Drive->Id);
    if (Drive->Id % 2 == 0) {
      RemoveEntryList(&Drive->Link);
      delete Drive;
    }
  }
  EXPECT_EQ(Visited, (std::vector<UINT32>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(Ids(), (std::vector<UINT32>{1, 3, 5}));
}

TEST_F(ListTest, RemovingEveryRecordEmptiesTheList) {
  for (UINT32 Id = 1; Id <= 3; Id++) {
    InsertTailList(&Head_, &Make(Id)->Link);
  }
  for (DRIVE *Drive : uefi::ListOf<&DRIVE::Link>(Head_)) {
    RemoveEntryList(&Drive->Link);
    // A second removal of an unlinked entry is harmless.
    RemoveEntryList(&Drive->Link);
    delete Drive;
  }
  EXPECT_TRUE(IsListEmpty(&Head_));
}

}  // namespace
