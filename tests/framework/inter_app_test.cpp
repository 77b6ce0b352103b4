#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <thread>

#include <Application.h>
#include <DataIO.h>
#include <File.h>
#include <MessageFilter.h>

#include "framework/TInterAppPrefs.h"
#include "framework/ValueItem.h"
#include "framework/framework_codes.h"
#include "player/Child.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

using namespace merion;

namespace {

constexpr const char* kSignature = "application/x-vnd.MERION-TavoraDisplayer";
constexpr const char* kFile = "config/MERION/Shared/MERION_Common_Prefs.arc";

/*!	Keeps what the application was told. */
class Notices : public BMessageFilter {
public:
	Notices() : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, kIAPChanged) { }

	filter_result Filter(BMessage* message, BHandler**) override
	{
		std::lock_guard locker(fLock);
		fMessages.push_back(*message);
		return B_SKIP_MESSAGE;
	}

	std::vector<BMessage> All() const
	{
		std::lock_guard locker(fLock);
		return fMessages;
	}

private:
	mutable std::mutex fLock;
	std::vector<BMessage> fMessages;
};

/*!	An application with settings and ports of the test's own. */
class InterAppPrefs : public testing::Test {
protected:
	InterAppPrefs()
	{
		setenv("XDG_CONFIG_HOME", (fFolder / "config").c_str(), 1);
		setenv("XDG_RUNTIME_DIR", fFolder.Path().c_str(), 1);
		fPrefs.AddItem(new ValueItem("AccKeyFormat"));
		fPrefs.SetAppSignatureRef(kSignature);
		be_app->Lock();
		be_app->AddCommonFilter(&fNotices);
		be_app->Unlock();
	}

	~InterAppPrefs() override
	{
		fPrefs.Stop();
		be_app->Lock();
		be_app->RemoveCommonFilter(&fNotices);
		be_app->Unlock();
	}

	int32 Value(const char* name = "AccKeyFormat") const
	{
		int32 value = -1;
		return fPrefs.GetValue(name, &value) == B_OK ? value : -1;
	}

	//! What a new application would begin with.
	static int32 StoredValue()
	{
		TInterAppPrefs prefs;
		prefs.AddItem(new ValueItem("AccKeyFormat"));
		int32 value = -1;
		return prefs.GetValue("AccKeyFormat", &value) == B_OK ? value : -1;
	}

	bool IsTold(size_t count) const
	{
		return wait_until([&] { return fNotices.All().size() >= count; });
	}

	static port_id OwnPort() { return find_port(TIAPPort::PortName(kSignature).c_str()); }

	TempFolder fFolder;
	Notices fNotices;
	TInterAppPrefs fPrefs;
};

std::string
flattened(const BMessage& message)
{
	BMallocIO bytes;
	message.Flatten(&bytes);
	return {static_cast<const char*>(bytes.Buffer()), bytes.BufferLength()};
}

BMessage
notice(const char* item, int32 value)
{
	BMessage message(kIAPChanged);
	message.AddString(kIAPSourceItem, item);
	message.AddInt32(item, value);
	return message;
}

} // namespace

TEST_F(InterAppPrefs, AChangeReachesAnotherProcessWithinASecond)
{
	Child peer({INTER_APP_PEER, "watch"}, {});
	ASSERT_TRUE(peer.WaitForOutput("ready"));
	double fastest = 1e9; // of three: a busy machine is no fault
	for (const int32 value : {0, 1, 2}) {
		const double start = Child::Now();
		EXPECT_EQ(fPrefs.ChangeValue("AccKeyFormat", value), B_OK);
		ASSERT_TRUE(peer.WaitForOutput("AccKeyFormat=" + std::to_string(value)));
		fastest = std::min(fastest, Child::Now() - start);
	}
	EXPECT_LT(fastest, 1);
	ASSERT_TRUE(IsTold(3));
	EXPECT_EQ(fNotices.All().size(), 3u) << "it was told of its own change once more";
}

TEST_F(InterAppPrefs, AChangeOfAnotherProcessIsToldHere)
{
	Child peer({INTER_APP_PEER, "change", "AccKeyFormat", "2"}, {});
	EXPECT_EQ(peer.WaitForExit(), 0) << peer.errors;
	ASSERT_TRUE(IsTold(1));
	const BMessage told = fNotices.All().front();
	EXPECT_STREQ(told.GetString(kIAPSourceItem, ""), "AccKeyFormat");
	EXPECT_EQ(fPrefs.SetValue(told), B_OK);
	EXPECT_EQ(Value(), 2);
	EXPECT_EQ(StoredValue(), 2);
}

TEST_F(InterAppPrefs, WhatIsNoNoticeIsThrownAway)
{
	BMessage wrongType(kIAPChanged);
	wrongType.AddString(kIAPSourceItem, "AccKeyFormat");
	wrongType.AddString("AccKeyFormat", "2");
	BMessage nameless(kIAPChanged);
	nameless.AddInt32("AccKeyFormat", 2);
	const std::string good = flattened(notice("AccKeyFormat", 2));
	std::string damaged = good;
	for (size_t i = 8; i < damaged.size(); i += 3)
		damaged[i] ^= 0x5a;

	const struct {
		const char* what;
		int32 code;
		std::string bytes;
	} kCases[] = {
		{"nothing", kIAPChanged, ""},
		{"another code", 'ipc_', good},
		{"no message", kIAPChanged, std::string(300, '\xff')},
		{"half of one", kIAPChanged, good.substr(0, good.size() / 2)},
		{"a damaged one", kIAPChanged, damaged},
		{"more than a notice can be", kIAPChanged, good + std::string(200000, 'x')},
		{"an item that nobody has", kIAPChanged, flattened(notice("Nobody", 1))},
		{"a value too large", kIAPChanged, flattened(notice("AccKeyFormat", 3))},
		{"a value below 0", kIAPChanged, flattened(notice("AccKeyFormat", -1))},
		{"a text", kIAPChanged, flattened(wrongType)},
		{"no item", kIAPChanged, flattened(nameless)},
	};
	const port_id port = OwnPort();
	ASSERT_GE(port, 0);
	for (const auto& each : kCases) {
		const size_t before = fNotices.All().size();
		write_port(port, each.code, each.bytes.data(), each.bytes.size());
		write_port(port, kIAPChanged, good.data(), good.size());
		ASSERT_TRUE(IsTold(before + 1)) << "the reader did not outlive " << each.what;
		EXPECT_EQ(fNotices.All().size(), before + 1) << each.what;
		EXPECT_EQ(fNotices.All().back().GetInt32("AccKeyFormat", -1), 2) << each.what;
	}
}

TEST_F(InterAppPrefs, RefusesWhatAnItemCannotTake)
{
	const int32 before = Value();
	EXPECT_EQ(fPrefs.ChangeValue("AccKeyFormat", 3), B_BAD_VALUE);
	EXPECT_EQ(fPrefs.ChangeValue("FlatToolBar", 1), B_NAME_NOT_FOUND);
	EXPECT_EQ(fPrefs.SetValue(notice("AccKeyFormat", -1)), B_BAD_VALUE);
	EXPECT_EQ(fPrefs.SetValue(BMessage(kIAPChanged)), B_NAME_NOT_FOUND);
	EXPECT_EQ(Value(), before);
	EXPECT_FALSE(std::filesystem::exists(fFolder / kFile));
}

TEST_F(InterAppPrefs, KeepsWhatOtherApplicationsHaveStored)
{
	TInterAppPrefs other;
	other.AddItem(new ValueItem("FlatToolBar", 1));
	const int32 flat = other.ItemAt(0)->Value() == 0 ? 1 : 0;
	EXPECT_EQ(other.ChangeValue("FlatToolBar", flat), B_OK);
	EXPECT_EQ(fPrefs.ChangeValue("AccKeyFormat", 2), B_OK);
	TInterAppPrefs third;
	third.AddItem(new ValueItem("FlatToolBar", 1));
	EXPECT_EQ(third.ItemAt(0)->Value(), flat);
	EXPECT_EQ(StoredValue(), 2);
}

TEST_F(InterAppPrefs, ADamagedFileIsReplaced)
{
	const int32 byDefault = Value();
	std::filesystem::create_directories(std::filesystem::path(fFolder / kFile).parent_path());
	for (const std::string& bytes :
		{std::string(), std::string(500, '\xfe'), flattened(notice("AccKeyFormat", 77)),
			flattened(notice("AccKeyFormat", 0)).substr(0, 40)}) {
		fFolder.Write(kFile, bytes);
		EXPECT_EQ(StoredValue(), byDefault) << bytes.size() << " bytes";
		EXPECT_EQ(fPrefs.ChangeValue("AccKeyFormat", 2), B_OK) << bytes.size() << " bytes";
		EXPECT_EQ(StoredValue(), 2) << bytes.size() << " bytes";
	}
}

TEST_F(InterAppPrefs, WhatCannotBeStoredHoldsAllTheSame)
{
	// A folder in the file's place, then a file in the folder's: refused for every user.
	const std::filesystem::path shared = std::filesystem::path(fFolder / kFile).parent_path();
	std::filesystem::create_directories(fFolder / kFile);
	EXPECT_NE(fPrefs.ChangeValue("AccKeyFormat", 2), B_OK);
	EXPECT_EQ(std::distance(std::filesystem::directory_iterator(shared), {}), 1)
		<< "something was left beside it";
	std::filesystem::remove_all(shared);
	fFolder.Write("config/MERION/Shared", "");
	EXPECT_NE(fPrefs.ChangeValue("AccKeyFormat", 0), B_OK);
	EXPECT_EQ(Value(), 0);
	EXPECT_TRUE(IsTold(2)) << "the application was not told";
}

TEST_F(InterAppPrefs, NothingRunsAfterStop)
{
	fPrefs.Stop(); // its port has the same name
	std::atomic<bool> ends = false;
	std::thread flood([&] {
		const std::string good = flattened(notice("AccKeyFormat", 2));
		while (!ends) {
			for (int i = 0; i < 20; i++)
				write_port_etc(
					OwnPort(), kIAPChanged, good.data(), good.size(), B_RELATIVE_TIMEOUT, 0);
			std::this_thread::yield();
		}
	});
	for (int i = 0; i < 20; i++) {
		auto* prefs = new TInterAppPrefs;
		prefs->AddItem(new ValueItem("AccKeyFormat"));
		prefs->SetAppSignatureRef(kSignature);
		const size_t before = fNotices.All().size();
		EXPECT_TRUE(i % 2 == 0 || IsTold(before + 1));
		prefs->Stop();
		prefs->Stop();
		delete prefs;
	}
	EXPECT_LT(OwnPort(), 0);
	EXPECT_LT(find_thread("Inter-app preferences"), 0);
	ends = true;
	flood.join();
	EXPECT_EQ(fPrefs.ChangeValue("AccKeyFormat", 0), B_OK) << "values still work";
	EXPECT_EQ(Value(), 0);
}

TEST(InterAppPort, HasANameOfItsOwnThatThePlatformDoesNotCut)
{
	const std::string displayer = TIAPPort::PortName(kSignature);
	const std::string editor = TIAPPort::PortName("application/x-vnd.MERION-TavoraEditor");
	EXPECT_NE(displayer, editor);
	EXPECT_TRUE(displayer.starts_with("MERION_IAP:"));
	EXPECT_LT(displayer.size(), static_cast<size_t>(B_OS_NAME_LENGTH));
}
