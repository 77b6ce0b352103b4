#include "support/temp_folder.h"

#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

struct End {
	int status;
	double seconds;
	std::string saved;
};

//! Runs the probe to its end; one that hangs is ended by its alarm clock.
End
run_probe(const char* mode)
{
	TempFolder folder;
	const std::string path = folder / "saved";
	std::string program
		= std::filesystem::read_symlink("/proc/self/exe").parent_path() / "interface_exit_probe";
	char* arguments[]
		= {program.data(), const_cast<char*>(mode), const_cast<char*>(path.c_str()), nullptr};
	const auto begin = std::chrono::steady_clock::now();
	pid_t child = -1;
	End end{};
	if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0) {
		ADD_FAILURE() << "cannot run " << program;
		return end;
	}
	const auto seconds = [begin] {
		return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
	};
	while (waitpid(child, &end.status, WNOHANG) == 0) {
		usleep(2000);
		if (seconds() > 30)
			kill(child, SIGKILL);
	}
	end.seconds = seconds();
	end.saved = folder.Read("saved");
	return end;
}

} // namespace

TEST(Exit, LoopersSaveTheirThingsWhenTheServerGoes)
{
	End end = run_probe("willing");
	ASSERT_TRUE(WIFEXITED(end.status)) << "it died of signal " << WTERMSIG(end.status);
	EXPECT_EQ(WEXITSTATUS(end.status), 7);
	EXPECT_EQ(end.saved, "saved");
	EXPECT_LT(end.seconds, 20);
}

TEST(Exit, OneThatRefusesIsLeftAfterASecond)
{
	End end = run_probe("stubborn");
	ASSERT_TRUE(WIFEXITED(end.status)) << "it died of signal " << WTERMSIG(end.status);
	EXPECT_EQ(WEXITSTATUS(end.status), 7);
	EXPECT_EQ(end.saved, "");
	EXPECT_GE(end.seconds, 1);
	EXPECT_LT(end.seconds, 20);
}

TEST(Exit, AnOpenFilePanelDoesNotKeepTheProgram)
{
	End end = run_probe("panel");
	ASSERT_TRUE(WIFEXITED(end.status)) << "it died of signal " << WTERMSIG(end.status);
	EXPECT_EQ(WEXITSTATUS(end.status), 0);
	EXPECT_EQ(end.saved, "saved");
	EXPECT_LT(end.seconds, 20);
}
