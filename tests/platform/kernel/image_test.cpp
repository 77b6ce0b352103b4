#include <image.h>

#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

class Image : public testing::Test {
protected:
	void SetUp() override
	{
		char folder[] = "/tmp/image_test.XXXXXX";
		ASSERT_NE(mkdtemp(folder), nullptr);
		fFolder = folder;
		fAddOn = fFolder / "real name.so";
		fs::copy_file(IMAGE_TEST_ADDON, fAddOn);
	}
	void TearDown() override { fs::remove_all(fFolder); }

	static std::map<std::string, image_info> AllImages()
	{
		std::map<std::string, image_info> images;
		image_info info;
		int32 cookie = 0;
		while (get_next_image_info(B_CURRENT_TEAM, &cookie, &info) == B_OK)
			images[info.name] = info;
		return images;
	}

	fs::path fFolder;
	fs::path fAddOn;
};

TEST_F(Image, TheProgramComesFirstThenWhatItNeeds)
{
	image_info info;
	int32 cookie = 0;
	ASSERT_EQ(get_next_image_info(getpid(), &cookie, &info), B_OK);
	EXPECT_EQ(info.type, B_APP_IMAGE);
	EXPECT_EQ(info.name, fs::read_symlink("/proc/self/exe").string());
	bool hasCore = false;
	for (const auto& [path, image] : AllImages()) {
		EXPECT_EQ(path, fs::canonical(path).string());
		hasCore |= fs::path(path).filename().string().starts_with("libtavora-core");
		const char* code = static_cast<const char*>(image.text);
		const char* function = reinterpret_cast<const char*>(&get_next_image_info);
		EXPECT_EQ(function >= code && function < code + image.text_size,
			path.find("libtavora-core") != std::string::npos)
			<< path;
	}
	EXPECT_TRUE(hasCore);
	EXPECT_EQ(get_next_image_info(1, &(cookie = 0), &info), B_BAD_TEAM_ID);
	EXPECT_EQ(get_next_image_info(0, &(cookie = 100000), &info), B_BAD_VALUE);
	EXPECT_EQ(get_next_image_info(0, &(cookie = -1), &info), B_BAD_VALUE);
}

TEST_F(Image, LoadsThroughLinksAndTellsTheRealPath)
{
	fs::create_symlink(fAddOn, fFolder / "link.so");
	const image_id image = load_add_on((fFolder / "link.so").c_str());
	ASSERT_GT(image, 0);
	const image_info listed = AllImages()[fAddOn];
	EXPECT_EQ(listed.id, image);
	EXPECT_EQ(listed.type, B_ADD_ON_IMAGE);
	struct stat file;
	ASSERT_EQ(stat(fAddOn.c_str(), &file), 0);
	EXPECT_EQ(listed.node, file.st_ino);
	image_info info;
	EXPECT_EQ(get_image_info(image, &info), B_OK);
	EXPECT_EQ(info.name, fAddOn);
	EXPECT_EQ(unload_add_on(image), B_OK);
	EXPECT_EQ(get_image_info(image, &info), B_BAD_IMAGE_ID);
}

TEST_F(Image, UnloadsTheCodeAfterTheLastUser)
{
	for (int round = 0; round < 3; round++) {
		const image_id image = load_add_on(fAddOn.c_str());
		ASSERT_GT(image, 0);
		EXPECT_EQ(load_add_on(fAddOn.c_str()), image);
		void* symbol;
		ASSERT_EQ(get_image_symbol(image, "image_test_answer", B_SYMBOL_TYPE_TEXT, &symbol), B_OK);
		const auto answer = reinterpret_cast<int (*)()>(symbol);
		EXPECT_EQ(answer(), 42) << "variables of the last round are still there";
		bool unloaded = false;
		ASSERT_EQ(get_image_symbol(image, "gImageTestUnloaded", B_SYMBOL_TYPE_DATA, &symbol), B_OK);
		*static_cast<bool**>(symbol) = &unloaded;

		EXPECT_EQ(unload_add_on(image), B_OK);
		EXPECT_FALSE(unloaded);
		EXPECT_EQ(answer(), 43);
		EXPECT_EQ(unload_add_on(image), B_OK);
		EXPECT_TRUE(unloaded);
		EXPECT_FALSE(AllImages().contains(fAddOn));
		EXPECT_EQ(unload_add_on(image), B_BAD_IMAGE_ID);
		EXPECT_EQ(get_image_symbol(image, "image_test_answer", B_SYMBOL_TYPE_ANY, &symbol),
			B_BAD_IMAGE_ID);
	}
}

TEST_F(Image, FindsOnlyAnImagesOwnSymbols)
{
	const image_id image = load_add_on(fAddOn.c_str());
	void* symbol = nullptr;
	// libc's, which the add-on needs
	EXPECT_EQ(get_image_symbol(image, "malloc", B_SYMBOL_TYPE_TEXT, &symbol), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(get_image_symbol(image, "nobody", B_SYMBOL_TYPE_ANY, &symbol), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(get_image_symbol(image, nullptr, B_SYMBOL_TYPE_ANY, &symbol), B_BAD_VALUE);
	EXPECT_EQ(symbol, nullptr);
	EXPECT_EQ(dlsym(RTLD_DEFAULT, "image_test_answer"), nullptr) << "an add-on's symbols leak";
	unload_add_on(image);
}

TEST_F(Image, TellsWhyAnAddOnDoesNotLoad)
{
	std::ofstream(fFolder / "text.so") << "not a program at all, however long it is";
	EXPECT_EQ(load_add_on((fFolder / "missing.so").c_str()), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(load_add_on((fFolder / "text.so").c_str()), B_NOT_AN_EXECUTABLE);
	EXPECT_EQ(load_add_on((fAddOn / "below").c_str()), B_NOT_A_DIRECTORY);
	EXPECT_EQ(load_add_on(nullptr), B_BAD_VALUE);
	EXPECT_EQ(unload_add_on(AllImages()[fs::canonical("/proc/self/exe")].id), B_BAD_IMAGE_ID);
}

TEST_F(Image, KnowsThePathOfWhatWasLoadedByARelativeOne)
{
	const fs::path before = fs::current_path();
	fs::current_path(fFolder);
	void* handle = dlopen("./real name.so", RTLD_NOW);
	fs::current_path(before);
	ASSERT_NE(handle, nullptr);
	EXPECT_TRUE(AllImages().contains(fAddOn));
	dlclose(handle);
}
