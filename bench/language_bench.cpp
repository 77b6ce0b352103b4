// INI files beside the SimpleIni library on the same 1 MB of 30 000 pairs, and the language table.

#include <DataIO.h>
#include <File.h>

#define SI_NO_CONVERSION // its own conversion is not packaged
#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

#include "framework/TIniFile.h"
#include "framework/TLLT.h"

namespace {

constexpr int kPairs = 30000;
constexpr int kTexts = 300;
constexpr int kLineLength = 2048;

std::string
key_of(int number)
{
	return "Some_Key_" + std::to_string(number * 7919 % kPairs);
}

const std::string&
ini_text()
{
	static const std::string sText = [] {
		std::string text = "[Data]\n";
		for (int i = 0; i < kPairs; i++)
			text.append(key_of(i)).append("=a value of some words\n");
		return text;
	}();
	return sText;
}

void
Load(benchmark::State& state)
{
	for (auto _ : state) {
		BMemoryIO stream(ini_text().data(), ini_text().size());
		merion::TIniFile ini(&stream, kLineLength);
		benchmark::DoNotOptimize(ini.FindSection("Data"));
	}
	state.SetBytesProcessed(state.iterations() * ini_text().size());
}

//! Finding a key for the first time makes the table of keys.
void
LoadAndFind(benchmark::State& state)
{
	char value[kLineLength + 1];
	for (auto _ : state) {
		BMemoryIO stream(ini_text().data(), ini_text().size());
		merion::TIniFile ini(&stream, kLineLength);
		ini.ChangeSection("Data");
		if (!ini.ReadValue("Some_Key_29999", value))
			state.SkipWithError("a key is not there");
	}
	state.SetBytesProcessed(state.iterations() * ini_text().size());
}

void
SimpleIniLoad(benchmark::State& state)
{
	for (auto _ : state) {
		CSimpleIniA ini;
		if (ini.LoadData(ini_text()) != SI_OK || ini.GetSectionSize("Data") != kPairs)
			state.SkipWithError("the text was not read whole");
	}
	state.SetBytesProcessed(state.iterations() * ini_text().size());
}

void
Find(benchmark::State& state)
{
	BMemoryIO stream(ini_text().data(), ini_text().size());
	merion::TIniFile ini(&stream, kLineLength);
	ini.ChangeSection("data");
	std::string keys[kTexts];
	for (int i = 0; i < kTexts; i++)
		keys[i] = key_of(i * 97);
	char value[kLineLength + 1];
	int i = 0;
	for (auto _ : state) {
		if (!ini.ReadValue(keys[i++ % kTexts].c_str(), value))
			state.SkipWithError("a key is not there");
	}
}

void
SimpleIniFind(benchmark::State& state)
{
	CSimpleIniA ini;
	ini.LoadData(ini_text());
	std::string keys[kTexts];
	for (int i = 0; i < kTexts; i++)
		keys[i] = key_of(i * 97);
	int i = 0;
	for (auto _ : state) {
		if (ini.GetValue("data", keys[i++ % kTexts].c_str()) == nullptr)
			state.SkipWithError("a key is not there");
	}
}

void
Flush(benchmark::State& state)
{
	BMallocIO stream;
	stream.SetBlockSize(1 << 20);
	stream.Write(ini_text().data(), ini_text().size());
	merion::TIniFile ini(&stream, kLineLength);
	for (auto _ : state)
		ini.Flush(true);
	state.SetBytesProcessed(state.iterations() * ini_text().size());
}

std::string
language_text()
{
	std::string text = "[Informations]\nHeader=LLT File Format 100\nLanguage=English\n[Data]\n";
	for (int i = 0; i < kTexts; i++)
		text.append(key_of(i)).append(" = A text of usual length#n(@Some_Key_0@)\n");
	return text;
}

void
LoadLanguage(benchmark::State& state)
{
	const std::string text = language_text();
	for (auto _ : state) {
		BMemoryIO stream(text.data(), text.size());
		merion::TIniFile ini(&stream, kLineLength);
		merion::TLLT table;
		if (table.Load(&ini) != B_OK || table.TextMap().size() != kTexts)
			state.SkipWithError("the table was not read whole");
	}
}

void
LookUpText(benchmark::State& state)
{
	const std::string text = language_text();
	BMemoryIO stream(text.data(), text.size());
	merion::TIniFile ini(&stream, kLineLength);
	merion::TLLT table;
	if (table.Load(&ini) != B_OK)
		state.SkipWithError("the table was not read");
	std::string keys[kTexts];
	for (int i = 0; i < kTexts; i++)
		keys[i] = key_of(i);
	int i = 0;
	for (auto _ : state)
		benchmark::DoNotOptimize(table.Text(keys[i++ % kTexts].c_str()));
}

BENCHMARK(Load)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(LoadAndFind)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(SimpleIniLoad)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(Find)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(SimpleIniFind)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(Flush)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(LoadLanguage)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(LookUpText)->Repetitions(5)->ReportAggregatesOnly();

} // namespace

BENCHMARK_MAIN();
