#include "CommandLine.h"
#include "QuboApp.h"
#include "SessionInstance.h"
#include "SignalWatch.h"
#include "hand_over.h"
#include "memory_use.h"
#include "player_messages.h"
#include "screen_check.h"

#include <AppDefs.h>
#include <Message.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUse = 2;
constexpr int kNoScreen = 3;

//! By the player that runs in this session.
int
explain_running()
{
	BMessage reply;
	if (!SessionInstance().Send(BMessage(kMsgExplain), reply)) {
		fputs("qubo: no qubo is running that could explain what it plays; --explain FILE explains "
			  "a file\n",
			stderr);
		return kFailed;
	}
	fputs(reply.GetString("text", ""), stdout);
	return reply.GetBool("ok", false) ? 0 : kFailed;
}

int
run_program(const CommandLine& line, SessionInstance* session)
{
	setenv("PIPEWIRE_DEBUG", "0", 0); // a missing sound device is told by us
	tune_allocator();
	SignalWatch signals;
	QuboApp application(line);
	signals.Start([&application] { application.AskToEnd(); });
	if (session != nullptr) {
		session->Start([&application](const BMessage& request, BMessage& reply) {
			return application.AnswerSession(request, reply);
		});
	}
	application.Run();
	if (session != nullptr)
		session->Stop();
	signals.Stop();
	return application.ExitCode();
}

int
run_in_session(const CommandLine& line)
{
	SessionInstance session;
	BMessage request;
	BMessage reply;
	if (!make_play_request(line, request))
		return kFailed;
	const bool isAnswered = session.ClaimOrSend(request, reply) == SessionInstance::kAnswered;
	return isAnswered ? 0 : run_program(line, &session);
}

int
run(const CommandLine& line)
{
	if (line.explain && !line.headless)
		return explain_running();
	if (line.headless)
		setenv("QT_QPA_PLATFORM", "offscreen", 1); // windows without a screen
	else if (!has_screen()) {
		fputs(
			"qubo: there is no screen to show windows on (--headless plays without one)\n", stderr);
		return kNoScreen;
	}
	return is_for_running_player(line) ? run_in_session(line) : run_program(line, nullptr);
}

} // namespace

int
main(int argc, char** argv)
{
	CommandLine line;
	std::string error;
	if (!line.Parse(std::vector<std::string>(argv + 1, argv + argc), error)) {
		fprintf(stderr, "qubo: %s\nTry: qubo --help\n", error.c_str());
		return kWrongUse;
	}
	if (line.help)
		fputs(CommandLine::HelpText(), stdout);
	else if (line.version)
		puts("qubo " QUBO_VERSION);
	else
		return run(line);
	return 0;
}
