#include <Archivable.h>
#include <Message.h>

#include <gtest/gtest.h>
#include <memory>

namespace nested::twice {

class Song : public BArchivable {
public:
	explicit Song(int32 number) : fNumber(number) { }
	explicit Song(BMessage* archive) : BArchivable(archive)
	{
		archive->FindInt32("number", &fNumber);
	}

	status_t Archive(BMessage* into, bool deep = true) const override
	{
		const status_t error = BArchivable::Archive(into, deep);
		return error == B_OK ? into->AddInt32("number", fNumber) : error;
	}
	static BArchivable* Instantiate(BMessage* archive);
	int32 Number() const { return fNumber; }

private:
	int32 fNumber = 0;
};

BArchivable*
Song::Instantiate(BMessage* archive)
{
	return validate_instantiation(archive, "nested::twice::Song") ? new Song(archive) : nullptr;
}

//! Refers to two others, and says how many of its kind there are.
class Node : public BArchivable {
public:
	Node() { sCount++; }
	explicit Node(BMessage* archive) : BArchivable(BUnarchiver::PrepareArchive(archive))
	{
		sCount++;
		BUnarchiver unarchiver(archive);
		fStatus = unarchiver.FindObject("owned", fOwned);
		if (fStatus == B_OK && archive->HasInt32("seen"))
			fStatus = unarchiver.FindObject("seen", 0, BUnarchiver::B_DONT_ASSUME_OWNERSHIP, fSeen);
		fStatus = unarchiver.Finish(fStatus);
	}
	~Node() override
	{
		delete fOwned;
		sCount--;
	}

	status_t Archive(BMessage* into, bool deep = true) const override
	{
		BArchiver archiver(into);
		status_t status = BArchivable::Archive(into, deep);
		if (status == B_OK)
			status = archiver.AddArchivable("owned", fOwned);
		if (status == B_OK && fSeen != nullptr)
			status = archiver.AddArchivable("seen", fSeen);
		return archiver.Finish(status);
	}
	static BArchivable* Instantiate(BMessage* archive);

	static inline int sCount = 0;
	Node* fOwned = nullptr;
	Node* fSeen = nullptr;
	status_t fStatus = B_OK;
};

BArchivable*
Node::Instantiate(BMessage* archive)
{
	return validate_instantiation(archive, "nested::twice::Node") ? new Node(archive) : nullptr;
}

} // namespace nested::twice

using nested::twice::Node;
using nested::twice::Song;

TEST(Archivable, IsBuiltAgainByTheNameOfItsClass)
{
	BMessage archive;
	ASSERT_EQ(Song(17).Archive(&archive), B_OK);
	const char* name = nullptr;
	ASSERT_EQ(archive.FindString("class", &name), B_OK);
	EXPECT_STREQ(name, "nested::twice::Song");
	image_id image = 0;
	const std::unique_ptr<BArchivable> object(instantiate_object(&archive, &image));
	const Song* song = dynamic_cast<Song*>(object.get());
	ASSERT_NE(song, nullptr);
	EXPECT_EQ(song->Number(), 17);
	image_info info;
	EXPECT_EQ(get_image_info(image, &info), B_OK);
	EXPECT_EQ(info.type, B_APP_IMAGE);
	EXPECT_EQ(Song(17).BArchivable::Archive(nullptr), B_BAD_VALUE);
}

// archives are data: no class name may do harm
TEST(Archivable, NoArchiveGivesAnythingElse)
{
	EXPECT_EQ(instantiate_object(nullptr), nullptr);
	BMessage empty;
	EXPECT_EQ(instantiate_object(&empty), nullptr);
	const char* const kNames[]
		= {"", "::", "Song", "nested::Song", "nested::twice::Song::", "BArchivable",
			"std::vector<int>", "nested::twice::Song::Instantiate", "a b", "%s%n"};
	for (const char* name : kNames) {
		BMessage archive;
		archive.AddString("class", name);
		image_id image = 0;
		EXPECT_EQ(instantiate_object(&archive, &image), nullptr) << name;
		EXPECT_FALSE(validate_instantiation(&archive, "nested::twice::Song")) << name;
	}
	EXPECT_FALSE(validate_instantiation(nullptr, "Song"));
	EXPECT_FALSE(validate_instantiation(&empty, nullptr));

	// the archive of a class that is derived from it
	BMessage derived;
	derived.AddString("class", "Unknown");
	derived.AddString("class", "nested::twice::Song");
	EXPECT_TRUE(validate_instantiation(&derived, "nested::twice::Song"));
}

// top owns a, which owns b; top sees b as well
TEST(Archiver, ObjectsAreArchivedOnceAndFoundByToken)
{
	BMessage archive;
	{
		Node top;
		top.fOwned = new Node;
		top.fOwned->fOwned = new Node;
		top.fSeen = top.fOwned->fOwned;
		ASSERT_EQ(top.Archive(&archive), B_OK);
	}
	EXPECT_EQ(archive.GetInt32("owned", 0), 1);
	EXPECT_EQ(archive.GetInt32("seen", 0), 2);
	int32 count = 0;
	type_code type;
	archive.GetInfo("_managed_archivable", &type, &count);
	EXPECT_EQ(count, 2);
	EXPECT_TRUE(archive.GetBool("_managed_archive"));
	for (const bool direct : {false, true}) {
		BMessage copy(archive);
		const std::unique_ptr<Node> node(
			direct ? new Node(&copy) : dynamic_cast<Node*>(instantiate_object(&copy)));
		ASSERT_NE(node, nullptr);
		EXPECT_EQ(node->fSeen, node->fOwned->fOwned);
		EXPECT_EQ(node->fSeen->fOwned, nullptr);
		EXPECT_EQ(Node::sCount, 3);
	}
	EXPECT_EQ(Node::sCount, 0);
}

TEST(Archiver, NothingIsLeftOfADamagedArchive)
{
	const auto node = [](int32 owned, int32 seen, const char* name = "nested::twice::Node") {
		BMessage archive;
		archive.AddString("class", name);
		archive.AddInt32("owned", owned);
		archive.AddInt32("seen", seen);
		return archive;
	};
	const struct {
		const char* name;
		BMessage top, first, second;
	} kCases[] = {
		{"owned by two", node(2, 1), node(2, -1), node(-1, -1)},
		{"owned by itself", node(1, -1), node(1, -1), node(-1, -1)},
		{"sees who is not yet built", node(1, -1), node(-1, 0), node(-1, -1)},
		{"a ring", node(1, -1), node(2, -1), node(1, -1)},
		{"seen, but nobody's", node(-1, 1), node(-1, 9), node(-1, -1)},
		{"another class", node(1, -1), node(-1, -1, "nested::twice::Song"), node(-1, -1)},
		{"out of range", node(1, 2), node(-1, -1), node(3, -1)},
	};
	for (const auto& test : kCases) {
		SCOPED_TRACE(test.name);
		BMessage archive(test.top);
		archive.AddMessage("_managed_archivable", &test.first);
		archive.AddMessage("_managed_archivable", &test.second);
		archive.AddBool("_managed_archive", true);
		EXPECT_EQ(instantiate_object(&archive), nullptr);
		EXPECT_EQ(Node::sCount, 0);
		EXPECT_NE(Node(&archive).fStatus, B_OK);
		EXPECT_EQ(Node::sCount, 0);
	}
	EXPECT_EQ(BArchiver(nullptr).Finish(), B_BAD_VALUE);
}
