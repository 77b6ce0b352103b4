#include "player/SessionInstance.h"

#include <Message.h>
#include <gtest/gtest.h>

#include <string_view>
#include <thread>

#include "support/temp_folder.h"
#include "support/wait_until.h"

namespace {

//! Whether something waits in the port of the first one of this process.
bool
has_request()
{
	port_info info;
	int32 cookie = 0;
	while (get_next_port_info(0, &cookie, &info) == B_OK) {
		const std::string_view name = info.name;
		if (name.starts_with("Qubo ") && !name.starts_with("Qubo reply ") && info.queue_count > 0)
			return true;
	}
	return false;
}

TEST(SessionInstance, WhoAsksOneThatEndsIsTheFirstOneAtOnce)
{
	const TempFolder folder;
	setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1);
	for (int round = 0; round < 20; round++) {
		BMessage reply;
		auto first = std::make_unique<SessionInstance>();
		ASSERT_EQ(first->ClaimOrSend(BMessage('ask '), reply), SessionInstance::kFirst);
		SessionInstance::Role role = SessionInstance::kAlone;
		std::thread second([&role] {
			BMessage answer;
			role = SessionInstance().ClaimOrSend(BMessage('ask '), answer);
		});
		const bool hasAsked = wait_until(has_request);
		first->Start([](const BMessage&, BMessage&) { return false; });
		first.reset();
		second.join();
		ASSERT_TRUE(hasAsked);
		ASSERT_EQ(role, SessionInstance::kFirst) << "in round " << round;
	}
}

} // namespace
