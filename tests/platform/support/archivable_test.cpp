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

} // namespace nested::twice

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
