// Reading lyrics files: 1 MB of 28 000 tagged lines, in UTF-8 and in Shift-JIS, beside iconv alone on the same text.

#include <Entry.h>

#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <iconv.h>
#include <string>
#include <unistd.h>

#include "lyrics/lyrics_text.h"
#include "prefs/TPref.h"

namespace {

constexpr int kLines = 28000;

//! UTF-8: a tag and seven Japanese characters make 28 000 lines of a megabyte.
std::string
utf8_text()
{
	std::string text;
	for (int i = 0; i < kLines; i++) {
		char tag[32];
		snprintf(tag, sizeof(tag), "[%02d:%02d:%02d]", i / 300 % 100, i / 5 % 60, i % 100);
		text.append(tag).append("さくら咲く春").append("la la\n");
	}
	return text;
}

std::string
convert(const std::string& text, const char* to, const char* from)
{
	std::string out(text.size() * 3, '\0');
	char* source = const_cast<char*>(text.data());
	char* target = out.data();
	size_t left = text.size();
	size_t room = out.size();
	const iconv_t converter = iconv_open(to, from);
	iconv(converter, &source, &left, &target, &room);
	iconv_close(converter);
	out.resize(out.size() - room);
	return out;
}

//! A file of its own for as long as the benchmark runs.
class LyricsFile {
public:
	explicit LyricsFile(const std::string& text)
		: fPath(std::filesystem::temp_directory_path()
			/ ("tavora-bench-" + std::to_string(getpid()) + ".lrc"))
	{
		std::ofstream(fPath, std::ios::binary) << text;
		get_ref_for_path(fPath.c_str(), &fRef);
	}
	~LyricsFile() { std::filesystem::remove(fPath); }

	const entry_ref& Ref() const { return fRef; }

private:
	std::filesystem::path fPath;
	entry_ref fRef;
};

void
load(benchmark::State& state, const std::string& text)
{
	const LyricsFile file(text);
	TPref pref;
	gPref = &pref;
	for (auto _ : state) {
		TLineList lines;
		int32 crType;
		int32 encoding;
		if (!load_lyrics(file.Ref(), &lines, &crType, &encoding) || lines.CountLines() != kLines)
			state.SkipWithError("the file was not read whole");
	}
	gPref = nullptr;
	state.SetBytesProcessed(state.iterations() * text.size());
}

void
LoadUTF8(benchmark::State& state)
{
	load(state, utf8_text());
}
BENCHMARK(LoadUTF8)->Repetitions(5)->ReportAggregatesOnly();

void
LoadShiftJIS(benchmark::State& state)
{
	load(state, convert(utf8_text(), "CP932", "UTF-8"));
}
BENCHMARK(LoadShiftJIS)->Repetitions(5)->ReportAggregatesOnly();

void
IconvShiftJIS(benchmark::State& state)
{
	const std::string text = convert(utf8_text(), "CP932", "UTF-8");
	for (auto _ : state)
		benchmark::DoNotOptimize(convert(text, "UTF-8", "CP932"));
	state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(IconvShiftJIS)->Repetitions(5)->ReportAggregatesOnly();

} // namespace

BENCHMARK_MAIN();
