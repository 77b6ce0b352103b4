#include "layout.h"

#include <charconv>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include <Box.h>
#include <Button.h>
#include <CheckBox.h>
#include <ColorControl.h>
#include <MenuField.h>
#include <Message.h>
#include <PopUpMenu.h>
#include <RadioButton.h>
#include <StringView.h>
#include <TabView.h>
#include <TextControl.h>

namespace {

enum class Kind {
	kView,
	kTabs,
	kPage,
	kBox,
	kButton,
	kCheck,
	kRadio,
	kText,
	kChoice,
	kMenu,
	kLabel,
	kColor
};

const std::map<std::string, Kind> kKinds = {{"view", Kind::kView}, {"tabs", Kind::kTabs},
	{"page", Kind::kPage}, {"box", Kind::kBox}, {"button", Kind::kButton}, {"check", Kind::kCheck},
	{"radio", Kind::kRadio}, {"text", Kind::kText}, {"choice", Kind::kChoice},
	{"menu", Kind::kMenu}, {"label", Kind::kLabel}, {"color", Kind::kColor}};

constexpr float kUsualCell = 8;

struct Entry {
	int line = 0;
	size_t depth = 0;
	Kind kind = Kind::kView;
	std::string name;
	BRect frame;
	uint32 follow = B_FOLLOW_LEFT_TOP;
	uint32 code = 0; // 0: it sends nothing
	float divider = -1;
	float cell = kUsualCell;

	BMessage* Message() const { return code != 0 ? new BMessage(code) : nullptr; }
};

bool
is_container(Kind kind)
{
	return kind == Kind::kView || kind == Kind::kTabs || kind == Kind::kPage || kind == Kind::kBox;
}

// ---- a line of text

class LineReader {
public:
	LineReader(int line, const std::string& text) : fLine(line), fWords(text) { }

	std::string Word(const char* what)
	{
		std::string word;
		if (!(fWords >> word))
			throw LayoutError(fLine, std::string(what) + " is missing");
		return word;
	}

	float Number(const char* what) { return Number(what, Word(what)); }

	float Number(const char* what, const std::string& word) const
	{
		int number = 0;
		const char* end = word.data() + word.size();
		const auto [stop, error] = std::from_chars(word.data(), end, number);
		if (error != std::errc() || stop != end || number < 0)
			throw LayoutError(fLine, std::string(what) + " is no whole number: " + word);
		return number;
	}

	//! False at the line's end.
	bool Option(std::string* name, std::string* value)
	{
		std::string word;
		if (!(fWords >> word))
			return false;
		const size_t sign = word.find('=');
		if (sign == std::string::npos)
			throw LayoutError(fLine, "no option: " + word);
		*name = word.substr(0, sign);
		*value = word.substr(sign + 1);
		return true;
	}

private:
	const int fLine;
	std::istringstream fWords;
};

BRect
read_frame(int line, LineReader& reader)
{
	const float left = reader.Number("LEFT");
	const float top = reader.Number("TOP");
	const float width = reader.Number("WIDTH");
	const float height = reader.Number("HEIGHT");
	if (width < 1 || height < 1)
		throw LayoutError(line, "a view without a size");
	return BRect(left, top, left + width - 1, top + height - 1);
}

uint32
horizontal(bool left, bool right)
{
	if (left && right)
		return B_FOLLOW_LEFT_RIGHT;
	return right ? B_FOLLOW_RIGHT : B_FOLLOW_LEFT;
}

uint32
vertical(bool top, bool bottom)
{
	if (top && bottom)
		return B_FOLLOW_TOP_BOTTOM;
	return bottom ? B_FOLLOW_BOTTOM : B_FOLLOW_TOP;
}

uint32
follow_of(int line, const std::string& edges)
{
	if (edges.empty() || edges.find_first_not_of("lrtb") != std::string::npos)
		throw LayoutError(line, "edges are of l, r, t and b: " + edges);
	const auto has = [&edges](char edge) { return edges.find(edge) != std::string::npos; };
	return horizontal(has('l'), has('r')) | vertical(has('t'), has('b'));
}

uint32
code_of(int line, const std::string& text)
{
	if (text.size() != sizeof(uint32))
		throw LayoutError(line, "a code has four characters: " + text);
	uint32 code = 0;
	for (const unsigned char character : text)
		code = code << 8 | character;
	return code;
}

void
read_options(LineReader& reader, Entry* entry)
{
	std::string name;
	std::string value;
	while (reader.Option(&name, &value)) {
		if (name == "follow")
			entry->follow = follow_of(entry->line, value);
		else if (name == "sends")
			entry->code = code_of(entry->line, value);
		else if (name == "divider")
			entry->divider = reader.Number("divider", value);
		else if (name == "cell")
			entry->cell = reader.Number("cell", value);
		else
			throw LayoutError(entry->line, "no option: " + name);
	}
}

Entry
read_entry(int line, size_t depth, const std::string& text)
{
	LineReader reader(line, text);
	Entry entry;
	entry.line = line;
	entry.depth = depth;
	const std::string kind = reader.Word("KIND");
	const auto found = kKinds.find(kind);
	if (found == kKinds.end())
		throw LayoutError(line, "no kind of view: " + kind);
	entry.kind = found->second;
	entry.name = reader.Word("NAME");
	entry.frame = read_frame(line, reader);
	read_options(reader, &entry);
	return entry;
}

// ---- views

template<typename Field>
std::unique_ptr<BView>
with_divider(std::unique_ptr<Field> field, const Entry& entry)
{
	if (entry.divider >= 0)
		field->SetDivider(entry.divider);
	return field;
}

std::unique_ptr<BView>
make_color_control(const Entry& entry)
{
	auto control = std::make_unique<BColorControl>(
		entry.frame.LeftTop(), B_CELLS_32x8, entry.cell, entry.name.c_str(), entry.Message());
	control->SetResizingMode(entry.follow);
	return control;
}

std::unique_ptr<BView>
make_control(const Entry& entry)
{
	const char* name = entry.name.c_str();
	const bool isChoice = entry.kind == Kind::kChoice;
	switch (entry.kind) {
		case Kind::kButton:
			return std::make_unique<BButton>(entry.frame, name, "", entry.Message(), entry.follow);
		case Kind::kCheck:
			return std::make_unique<BCheckBox>(
				entry.frame, name, "", entry.Message(), entry.follow);
		case Kind::kRadio:
			return std::make_unique<BRadioButton>(
				entry.frame, name, "", entry.Message(), entry.follow);
		case Kind::kText:
			return with_divider(std::make_unique<BTextControl>(
									entry.frame, name, "", "", entry.Message(), entry.follow),
				entry);
		case Kind::kChoice:
		case Kind::kMenu:
			return with_divider(std::make_unique<BMenuField>(entry.frame, name, "",
									new BPopUpMenu("", isChoice, isChoice), entry.follow),
				entry);
		case Kind::kLabel:
			return std::make_unique<BStringView>(entry.frame, name, "", entry.follow);
		default:
			return make_color_control(entry);
	}
}

std::unique_ptr<BView>
make_view(const Entry& entry)
{
	const char* name = entry.name.c_str();
	std::unique_ptr<BView> view;
	switch (entry.kind) {
		case Kind::kTabs:
			return std::make_unique<BTabView>(entry.frame, name, B_WIDTH_FROM_LABEL, entry.follow);
		case Kind::kBox:
			return std::make_unique<BBox>(entry.frame, name, entry.follow);
		case Kind::kView:
		case Kind::kPage:
			view = std::make_unique<BView>(entry.frame, name, entry.follow, B_WILL_DRAW);
			view->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
			return view;
		default:
			return make_control(entry);
	}
}

//! The views from the root down to the last one.
class Builder {
public:
	void Add(const Entry& entry)
	{
		if (!fNames.insert(entry.name).second)
			throw LayoutError(entry.line, "this name is there already: " + entry.name);
		if (entry.depth > fOpen.size() || (entry.depth == 0 && fRoot != nullptr))
			throw LayoutError(entry.line, "it is in no view");
		fOpen.resize(entry.depth);
		if (!fOpen.empty() && !is_container(fOpen.back().kind))
			throw LayoutError(entry.line, "it is in a view that holds none");
		const bool isInTabs = !fOpen.empty() && fOpen.back().kind == Kind::kTabs;
		if (isInTabs != (entry.kind == Kind::kPage))
			throw LayoutError(entry.line, "pages, and nothing else, are in tabs");
		std::unique_ptr<BView> view = make_view(entry);
		fOpen.push_back({entry.kind, view.get()});
		Own(std::move(view), isInTabs);
	}

	std::unique_ptr<BView> TakeRoot() { return std::move(fRoot); }

private:
	struct Open {
		Kind kind;
		BView* view;
	};

	void Own(std::unique_ptr<BView> view, bool isPage)
	{
		if (fOpen.size() == 1) {
			fRoot = std::move(view);
			return;
		}
		BView* parent = fOpen[fOpen.size() - 2].view;
		if (isPage)
			static_cast<BTabView*>(parent)->AddTab(view.release());
		else
			parent->AddChild(view.release());
	}

	std::unique_ptr<BView> fRoot;
	std::vector<Open> fOpen;
	std::set<std::string> fNames;
};

} // namespace

std::unique_ptr<BView>
read_layout(std::istream& text)
{
	Builder builder;
	std::string line;
	int number = 0;
	while (std::getline(text, line)) {
		number++;
		const size_t depth = line.find_first_not_of('\t');
		if (depth != std::string::npos && line[depth] != '#')
			builder.Add(read_entry(number, depth, line));
	}
	std::unique_ptr<BView> root = builder.TakeRoot();
	if (root == nullptr)
		throw LayoutError(number, "there is no view");
	return root;
}
