#pragma once

#include <chrono>
#include <thread>

//! Looks again and again, for ten seconds at most, until the condition holds; whether it did.
template<typename Condition>
[[nodiscard]] bool
wait_until(Condition condition, std::chrono::seconds limit = std::chrono::seconds(10))
{
	const auto end = std::chrono::steady_clock::now() + limit;
	while (!condition()) {
		if (std::chrono::steady_clock::now() > end)
			return false;
		std::this_thread::sleep_for(std::chrono::milliseconds(1));
	}
	return true;
}
