#pragma once

#include <cmath>
#include <cstdint>
#include <fstream>
#include <string>

/*!	Writes a song: `seconds` of a tone, with a title and an artist if there are any. */
inline void
write_wave(const std::string& path, double seconds, const std::string& title = "",
	const std::string& artist = "")
{
	constexpr uint32_t kRate = 22050;
	auto number = [](uint32_t value, int bytes) {
		std::string text;
		for (int i = 0; i < bytes; i++)
			text += static_cast<char>(value >> (8 * i));
		return text;
	};
	auto chunk = [&](const std::string& id, std::string data) {
		data.resize((data.size() + 1) & ~size_t(1));
		return id + number(static_cast<uint32_t>(data.size()), 4) + data;
	};
	std::string samples;
	for (uint32_t i = 0; i < seconds * kRate; i++)
		samples += number(static_cast<uint32_t>(3000 * std::sin(i * 0.1)), 2);
	std::string body = "WAVE"
		+ chunk("fmt ",
			number(1, 2) + number(1, 2) + number(kRate, 4) + number(2 * kRate, 4) + number(2, 2)
				+ number(16, 2));
	if (!title.empty())
		body += chunk("LIST", "INFO" + chunk("INAM", title + '\0') + chunk("IART", artist + '\0'));
	body += chunk("data", samples);
	std::ofstream(path, std::ios::binary)
		<< "RIFF" << number(static_cast<uint32_t>(body.size()), 4) << body;
}
