#include "kernel/PortFolder.h"
#include "platform/kernel/watchdog.h"

#include <OS.h>

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <numeric>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;
using BPrivate::kPortMaxMessageSize;

//! A run of port_peer.
class Peer {
public:
	Peer(std::vector<std::string> arguments)
	{
		int in[2], out[2];
		EXPECT_EQ(pipe2(in, O_CLOEXEC) | pipe2(out, O_CLOEXEC), 0);
		posix_spawn_file_actions_t actions;
		posix_spawn_file_actions_init(&actions);
		posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
		posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
		arguments.insert(arguments.begin(), PORT_PEER);
		std::vector<char*> argv;
		for (std::string& argument : arguments)
			argv.push_back(argument.data());
		argv.push_back(nullptr);
		EXPECT_EQ(posix_spawn(&fProcess, PORT_PEER, &actions, nullptr, argv.data(), environ), 0);
		posix_spawn_file_actions_destroy(&actions);
		close(in[0]);
		close(out[1]);
		fInput = in[1];
		char ready[6];
		EXPECT_EQ(read(out[0], ready, sizeof(ready)), 6);
		close(out[0]);
	}
	~Peer()
	{
		close(fInput);
		if (fProcess > 0)
			Wait();
	}

	pid_t Process() const { return fProcess; }
	void Kill()
	{
		kill(fProcess, SIGKILL);
		Wait();
	}
	int Wait()
	{
		int status = -1;
		waitpid(fProcess, &status, 0);
		fProcess = -1;
		return status;
	}

private:
	pid_t fProcess = -1;
	int fInput = -1;
};

class Port : public testing::Test {
protected:
	void SetUp() override
	{
		char folder[] = "/tmp/port_test.XXXXXX";
		ASSERT_NE(mkdtemp(folder), nullptr);
		fRuntime = folder;
		setenv("XDG_RUNTIME_DIR", folder, 1);
	}
	void TearDown() override { fs::remove_all(fRuntime); }

	size_t CountSockets() const
	{
		const fs::path folder = fRuntime / "tavora-ports";
		return fs::exists(folder)
			? std::distance(fs::directory_iterator(folder), fs::directory_iterator())
			: 0;
	}

	fs::path fRuntime;
	char fBuffer[64];
	int32 fCode = 0;
};

TEST_F(Port, KeepsMessagesInOrderAndCutsWhatDoesNotFit)
{
	const Watchdog watchdog("a message that was written did not come out");
	const port_id port = create_port(3, "order");
	ASSERT_GT(port, 0);
	EXPECT_EQ(write_port(port, 'one ', "first", 5), B_OK);
	EXPECT_EQ(write_port(port, 'two ', nullptr, 0), B_OK);
	EXPECT_EQ(write_port(port, 'tree', "a longer one", 12), B_OK);
	EXPECT_EQ(write_port_etc(port, 0, "x", 1, B_RELATIVE_TIMEOUT, 0), B_WOULD_BLOCK);
	EXPECT_EQ(write_port_etc(port, 0, "x", 1, B_RELATIVE_TIMEOUT, 3000), B_TIMED_OUT);
	EXPECT_EQ(port_count(port), 3);
	EXPECT_EQ(port_buffer_size(port), 5);
	EXPECT_EQ(read_port(port, &fCode, fBuffer, sizeof(fBuffer)), 5);
	EXPECT_EQ(fCode, 'one ');
	EXPECT_EQ(memcmp(fBuffer, "first", 5), 0);
	EXPECT_EQ(read_port(port, &fCode, nullptr, 0), 0);
	EXPECT_EQ(fCode, 'two ');
	fBuffer[4] = '!';
	EXPECT_EQ(read_port(port, &fCode, fBuffer, 4), 4);
	EXPECT_EQ(memcmp(fBuffer, "a lo!", 5), 0) << "written beyond the buffer";
	EXPECT_EQ(read_port_etc(port, &fCode, fBuffer, 1, B_RELATIVE_TIMEOUT, 0), B_WOULD_BLOCK);
	EXPECT_EQ(port_buffer_size_etc(port, B_RELATIVE_TIMEOUT, 2000), B_TIMED_OUT);
	port_info info;
	EXPECT_EQ(get_port_info(port, &info), B_OK);
	EXPECT_EQ(info.total_count, 3);
	EXPECT_EQ(info.capacity, 3);
	EXPECT_EQ(delete_port(port), B_OK);
	EXPECT_EQ(CountSockets(), 0u);
}

TEST_F(Port, RefusesBadArguments)
{
	const port_id port = create_port(1, "bad");
	static char sLarge[kPortMaxMessageSize + 1];
	EXPECT_EQ(create_port(0, "none"), B_BAD_VALUE);
	EXPECT_EQ(create_port(100000, "too many"), B_BAD_VALUE);
	EXPECT_EQ(write_port(port, 0, nullptr, 1), B_BAD_VALUE);
	EXPECT_EQ(write_port(port, 0, sLarge, sizeof(sLarge)), B_BAD_VALUE);
	EXPECT_EQ(write_port(port, 0, sLarge, kPortMaxMessageSize), B_OK);
	EXPECT_EQ(read_port(port, nullptr, nullptr, 5), B_BAD_VALUE);
	EXPECT_EQ(find_port(nullptr), B_BAD_VALUE);
	EXPECT_EQ(find_port("nobody's"), B_NAME_NOT_FOUND);
	EXPECT_EQ(get_port_info(port, nullptr), B_BAD_VALUE);
	delete_port(port);
	port_info info;
	for (const port_id bad : {port, port_id(0), port_id(-1), port_id(INT_MAX)}) {
		EXPECT_EQ(write_port(bad, 0, "", 0), B_BAD_PORT_ID);
		EXPECT_EQ(read_port(bad, &fCode, fBuffer, 1), B_BAD_PORT_ID);
		EXPECT_EQ(port_buffer_size(bad), B_BAD_PORT_ID);
		EXPECT_EQ(port_count(bad), B_BAD_PORT_ID);
		EXPECT_EQ(close_port(bad), B_BAD_PORT_ID);
		EXPECT_EQ(delete_port(bad), B_BAD_PORT_ID);
		EXPECT_EQ(get_port_info(bad, &info), B_BAD_PORT_ID);
	}
}

TEST_F(Port, LosesNothingBetweenManyThreads)
{
	const Watchdog watchdog("writers and readers of a port wait for each other");
	const port_id port = create_port(4, "busy");
	constexpr int32 kWriters = 4, kReaders = 3, kMessages = 2000;
	std::atomic<int64> sum = 0;
	std::vector<std::thread> threads;
	for (int32 writer = 0; writer < kWriters; writer++) {
		threads.emplace_back([=] {
			for (int32 i = 0; i < kMessages; i++)
				ASSERT_EQ(write_port(port, i, &i, sizeof(i)), B_OK);
		});
	}
	std::vector<std::thread> readers;
	for (int32 reader = 0; reader < kReaders; reader++) {
		readers.emplace_back([&] {
			int32 code, value;
			while (read_port(port, &code, &value, sizeof(value)) == sizeof(value)) {
				EXPECT_EQ(code, value);
				sum += value;
			}
		});
	}
	for (std::thread& thread : threads)
		thread.join();
	// what is still there comes out, then the readers end
	close_port(port);
	EXPECT_EQ(write_port(port, 0, "", 0), B_BAD_PORT_ID);
	for (std::thread& thread : readers)
		thread.join();
	EXPECT_EQ(sum, int64(kWriters) * kMessages * (kMessages - 1) / 2);
	delete_port(port);
}

TEST_F(Port, DeletionWakesReadersAndWriters)
{
	const Watchdog watchdog("somebody slept on at a port that is gone");
	for (int round = 0; round < 50; round++) {
		const port_id empty = create_port(1, "empty");
		const port_id full = create_port(1, "full");
		write_port(full, 0, "", 0);
		std::thread reader([&] { EXPECT_EQ(read_port(empty, &fCode, fBuffer, 1), B_BAD_PORT_ID); });
		std::thread sizer([&] { EXPECT_EQ(port_buffer_size(empty), B_BAD_PORT_ID); });
		std::thread writer([&] { EXPECT_EQ(write_port(full, 0, "", 0), B_BAD_PORT_ID); });
		if (round % 2 == 0)
			std::this_thread::yield();
		delete_port(empty);
		delete_port(full);
		reader.join();
		sizer.join();
		writer.join();
	}
}

TEST_F(Port, ListsItsOwn)
{
	// names need not be unique, and any byte may be in them
	const port_id ports[] = {create_port(1, "twin"), create_port(2, "twin"),
		create_port(3, "../a/b \xe6\xad\x8c .so"), create_port(4, "")};
	port_info info;
	int32 cookie = 0;
	for (const port_id port : ports) {
		ASSERT_EQ(get_next_port_info(B_CURRENT_TEAM, &cookie, &info), B_OK);
		EXPECT_EQ(info.port, port);
		EXPECT_EQ(info.team, getpid());
	}
	EXPECT_EQ(get_next_port_info(getpid(), &cookie, &info), B_BAD_VALUE);
	EXPECT_EQ(find_port("twin"), ports[0]);
	EXPECT_EQ(find_port("../a/b \xe6\xad\x8c .so"), ports[2]);
	EXPECT_EQ(CountSockets(), 4u);
	for (const port_id port : ports)
		delete_port(port);
}

TEST_F(Port, ReachesAnotherProcessAndIsReached)
{
	const Watchdog watchdog("no answer from the other process");
	const std::string name = "MERION_IAP:application/x-vnd.MERION-E"; // longer than a name may be
	const port_id back = create_port(10, "the way back");
	Peer peer({"echo", name, "5", "the way back"});
	const port_id port = find_port(name.c_str());
	ASSERT_GT(port, 0);
	EXPECT_NE(port, back);
	EXPECT_EQ(find_port(name.c_str()), port) << "one port, two ids";
	port_info info;
	ASSERT_EQ(get_port_info(port, &info), B_OK);
	EXPECT_EQ(info.team, peer.Process());
	EXPECT_EQ(info.capacity, 5);
	EXPECT_EQ(info.name, name.substr(0, B_OS_NAME_LENGTH - 1));

	std::vector<char> sent(kPortMaxMessageSize), got(kPortMaxMessageSize);
	std::iota(sent.begin(), sent.end(), 0);
	for (const size_t size : {size_t(0), size_t(1), size_t(5000), kPortMaxMessageSize}) {
		ASSERT_EQ(write_port(port, 'test', sent.data(), size), B_OK) << size;
		ASSERT_EQ(read_port(back, &fCode, got.data(), got.size()), ssize_t(size));
		EXPECT_EQ(fCode, 'test');
		EXPECT_EQ(memcmp(sent.data(), got.data(), size), 0) << size;
	}
	EXPECT_EQ(read_port(port, &fCode, fBuffer, 1), B_NOT_ALLOWED);
	EXPECT_EQ(port_count(port), B_NOT_ALLOWED);
	EXPECT_EQ(delete_port(port), B_NOT_ALLOWED);
	EXPECT_EQ(write_port(port, 0, nullptr, 0), B_OK);
	EXPECT_EQ(peer.Wait(), 0);
	EXPECT_EQ(CountSockets(), 1u) << "a process that ends in order takes its sockets along";
	delete_port(back);
}

// a reader sleeps in this process while another one writes
TEST_F(Port, WakesAReaderForBothKindsOfWriters)
{
	const Watchdog watchdog("a sleeping reader was not woken");
	const port_id back = create_port(2, "sleeper's");
	Peer peer({"echo", "alarm", "5", "sleeper's"});
	const port_id alarm = find_port("alarm");
	std::vector<int32> codes;
	std::thread reader([&] {
		int32 code = -1;
		while (code != 'last') {
			ASSERT_EQ(read_port(back, &code, fBuffer, sizeof(fBuffer)), 0);
			codes.push_back(code);
		}
	});
	for (int32 i = 1; i <= 20; i++) {
		EXPECT_EQ(write_port(alarm, i, nullptr, 0), B_OK);
		EXPECT_EQ(write_port(back, 1000 + i, nullptr, 0), B_OK);
	}
	EXPECT_EQ(write_port(alarm, 'last', nullptr, 0), B_OK);
	reader.join();
	EXPECT_EQ(codes.size(), 41u);
	EXPECT_EQ(write_port(alarm, 0, nullptr, 0), B_OK);
	delete_port(back);
}

TEST_F(Port, WaitsForAProcessThatDoesNotRead)
{
	const Watchdog watchdog("a writer waits for a process that is dead");
	Peer peer({"hold", "lazy", "1"});
	const port_id port = find_port("lazy");
	ASSERT_GT(port, 0);
	status_t error = B_OK;
	int written = 0;
	for (; error == B_OK && written < 100000; written++)
		error = write_port_etc(port, 1, "x", 1, B_RELATIVE_TIMEOUT, 0);
	EXPECT_EQ(error, B_WOULD_BLOCK);
	EXPECT_GT(written, 1) << "there is no room at all";
	const bigtime_t start = system_time();
	EXPECT_EQ(write_port_etc(port, 1, "x", 1, B_RELATIVE_TIMEOUT, 30000), B_TIMED_OUT);
	EXPECT_GE(system_time() - start, 30000);

	std::atomic<bool> waits = false;
	std::thread writer([&] {
		waits = true;
		EXPECT_EQ(write_port(port, 1, "x", 1), B_BAD_PORT_ID);
	});
	while (!waits)
		std::this_thread::yield();
	peer.Kill();
	writer.join();
}

TEST_F(Port, NoticesThatAProcessHasDied)
{
	const Watchdog watchdog("a port of a dead process was waited for");
	Peer peer({"hold", "mortal", "1"});
	Peer second({"hold", "mortal too", "1"});
	const port_id port = find_port("mortal");
	const port_id other = find_port("mortal too");
	EXPECT_EQ(CountSockets(), 2u);
	peer.Kill();
	second.Kill();
	EXPECT_EQ(CountSockets(), 2u) << "the test needs sockets that are left over";
	EXPECT_EQ(write_port(port, 1, "x", 1), B_BAD_PORT_ID);
	EXPECT_EQ(write_port(port, 1, "x", 1), B_BAD_PORT_ID);
	EXPECT_EQ(CountSockets(), 1u);
	port_info info;
	EXPECT_EQ(get_port_info(other, &info), B_BAD_PORT_ID);
	EXPECT_EQ(find_port("mortal too"), B_NAME_NOT_FOUND);
	EXPECT_EQ(CountSockets(), 0u);
}

//! The names of all ports of all processes that begin with `prefix`.
static std::vector<std::string>
ports_that_begin_with(const char* prefix)
{
	std::vector<std::string> names;
	team_info team;
	int32 teamCookie = 0;
	while (get_next_team_info(&teamCookie, &team) == B_OK) {
		port_info port;
		int32 portCookie = 0;
		while (get_next_port_info(team.team, &portCookie, &port) == B_OK) {
			EXPECT_EQ(port.team, team.team);
			if (std::string(port.name).starts_with(prefix))
				names.push_back(port.name);
		}
	}
	std::sort(names.begin(), names.end());
	return names;
}

TEST_F(Port, AreFoundInAllProcessesByTheBeginningOfTheirNames)
{
	const Watchdog watchdog("listing the ports did not come to an end");
	const port_id own = create_port(1, "MERION_IAP:own");
	Peer first({"hold", "MERION_IAP:first", "1"});
	Peer second({"hold", "MERION_IAP:second", "1"});
	Peer stranger({"hold", "somebody else's", "1"});
	EXPECT_EQ(ports_that_begin_with("MERION_IAP:"),
		(std::vector<std::string>{"MERION_IAP:first", "MERION_IAP:own", "MERION_IAP:second"}));
	first.Kill();
	EXPECT_EQ(ports_that_begin_with("MERION_IAP:"),
		(std::vector<std::string>{"MERION_IAP:own", "MERION_IAP:second"}));
	delete_port(own);
	EXPECT_EQ(ports_that_begin_with("MERION_IAP:"), std::vector<std::string>{"MERION_IAP:second"});
}

TEST_F(Port, KeepsOutOfAFolderThatOthersCanEnter)
{
	fs::create_directory(fRuntime / "tavora-ports");
	ASSERT_EQ(chmod((fRuntime / "tavora-ports").c_str(), 0755), 0);
	const port_id port = create_port(1, "discreet");
	ASSERT_GT(port, 0);
	EXPECT_EQ(CountSockets(), 0u);
	EXPECT_EQ(write_port(port, 1, "x", 1), B_OK) << "within the process it works all the same";
	delete_port(port);

	fs::remove_all(fRuntime / "tavora-ports");
	fs::create_directory(fRuntime / "elsewhere");
	fs::permissions(fRuntime / "elsewhere", fs::perms::owner_all);
	fs::create_directory_symlink(fRuntime / "elsewhere", fRuntime / "tavora-ports");
	delete_port(create_port(1, "misled"));
	EXPECT_TRUE(fs::is_empty(fRuntime / "elsewhere"));
}

TEST_F(Port, FindsItsWayHoweverLongTheFoldersPathIs)
{
	const fs::path deep = fRuntime / std::string(120, 'd');
	fs::create_directory(deep);
	setenv("XDG_RUNTIME_DIR", deep.c_str(), 1);
	Peer peer({"hold", "thirty-one bytes, all of them!!", "4096"});
	EXPECT_GT(find_port("thirty-one bytes, all of them!!"), 0);
	EXPECT_FALSE(fs::is_empty(deep / "tavora-ports"));
}
