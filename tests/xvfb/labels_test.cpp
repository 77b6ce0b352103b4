// The whole program, as a user meets it: what its windows say is read through the toolkit's accessibility.

#include <gtest/gtest.h>

#include <AppDefs.h>
#include <Application.h>
#include <OS.h>
#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPixmap>
#include <QTest>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <thread>
#include <unistd.h>

#include "framework/TLLT.h"
#include "player/CommandLine.h"
#include "player/QuboApp.h"
#include "server/ServerLink.h"
#include "support/languages.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

namespace fs = std::filesystem;

namespace {

// µs from the saved file to the last label; a sanitizer makes everything slower.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bigtime_t kLanguagePatience = 10000000;
#else
constexpr bigtime_t kLanguagePatience = 1000000;
#endif

fs::path sAddOns; // a copy of the built ones, whose language files the tests may change

//! On the thread that has the windows.
template<typename Function>
auto
on_server(Function function)
{
	return *BPrivate::ServerLink::Default().Call(function);
}

QWidget*
window_titled(const QString& beginning)
{
	for (QWidget* window : QApplication::topLevelWidgets()) {
		if (window->isVisible() && window->windowTitle().startsWith(beginning))
			return window;
	}
	return nullptr;
}

bool
has_window(const std::string& beginning)
{
	return on_server(
		[beginning] { return window_titled(QString::fromStdString(beginning)) != nullptr; });
}

void
visit(QAccessibleInterface* object, const std::function<void(QAccessibleInterface*)>& visitor)
{
	if (object == nullptr || object->state().invisible)
		return;
	visitor(object);
	for (int i = 0; i < object->childCount(); i++)
		visit(object->child(i), visitor);
}

//! The names of all that is visible in a window, which is found by its title's beginning.
QStringList
names_in(const std::string& title)
{
	return on_server([title] {
		QStringList names;
		visit(QAccessible::queryAccessibleInterface(window_titled(QString::fromStdString(title))),
			[&names](QAccessibleInterface* object) { names << object->text(QAccessible::Name); });
		return names;
	});
}

bool
says(const std::string& title, const std::string& name)
{
	return names_in(title).contains(QString::fromStdString(name));
}

//! Presses what has that name, as an assistive program does.
bool
press(const std::string& title, const std::string& name)
{
	return on_server([title, name] {
		bool isPressed = false;
		visit(QAccessible::queryAccessibleInterface(window_titled(QString::fromStdString(title))),
			[&](QAccessibleInterface* object) {
				auto* action = object->actionInterface();
				if (!isPressed && action != nullptr
					&& object->text(QAccessible::Name) == QString::fromStdString(name)) {
					action->doAction(object->role() == QAccessible::RadioButton
							? QAccessibleActionInterface::toggleAction()
							: QAccessibleActionInterface::pressAction());
					isPressed = true;
				}
			});
		return isPressed;
	});
}

QAction*
action_at(const QList<QAction*>& actions, const QStringList& path)
{
	for (QAction* action : actions) {
		if (action->text().remove(u'&').section(u'\t', 0, 0) != path.first())
			continue;
		if (path.size() == 1)
			return action;
		return action->menu() != nullptr ? action_at(action->menu()->actions(), path.mid(1))
										 : nullptr;
	}
	return nullptr;
}

bool
choose_in_player_menu(const QStringList& path)
{
	return on_server([path] {
		const QWidget* window = window_titled("Qubo");
		const auto* bar = window != nullptr ? window->findChild<QMenuBar*>() : nullptr;
		QAction* action = bar != nullptr ? action_at(bar->actions(), path) : nullptr;
		if (action != nullptr)
			action->trigger();
		return action != nullptr;
	});
}

//! Opens the lyrics window's menu with the mouse and answers what it says.
QStringList
open_popup(const std::string& lyricsTitle)
{
	const auto isOpen = [] {
		return on_server(
			[] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()) != nullptr; });
	};
	// A click that comes while the one before is still being closed opens none.
	for (int attempt = 0; attempt < 5 && !isOpen(); attempt++) {
		on_server([lyricsTitle] {
			QTest::mouseClick(window_titled(QString::fromStdString(lyricsTitle))->windowHandle(),
				Qt::RightButton, {}, QPoint(40, 40));
			return true;
		});
		if (wait_until(isOpen, std::chrono::seconds(2)))
			break;
	}
	return on_server([] {
		QStringList labels;
		if (const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
			for (const QAction* action : menu->actions())
				labels << action->text();
		}
		return labels;
	});
}

bool
choose_in_popup(const std::string& label)
{
	return on_server([label] {
		auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
		QAction* action = menu != nullptr
			? action_at(menu->actions(), {QString::fromStdString(label)})
			: nullptr;
		if (action == nullptr)
			return false;
		const QPoint place = menu->actionGeometry(action).center();
		QTest::mouseClick(menu, Qt::LeftButton, {}, place);
		return true;
	});
}

void
close_popup()
{
	on_server([] {
		if (QWidget* popup = QApplication::activePopupWidget())
			popup->close();
		return true;
	});
}

//! Whether the menu says that, now or soon; it is open then.
bool
popup_says(const std::string& lyricsTitle, const char* label)
{
	return wait_until([&] {
		if (open_popup(lyricsTitle).contains(QString(label)))
			return true;
		close_popup();
		return false;
	});
}

//! Pictures of all windows for a look at them, when a folder for them is given.
void
save_pictures(const std::string& name)
{
	const char* folder = getenv("TAVORA_PICTURES");
	if (folder == nullptr)
		return;
	on_server([=] {
		int number = 0;
		for (QWidget* window : QApplication::topLevelWidgets()) {
			if (window->isVisible())
				window->grab().save(
					QStringLiteral("%1/%2-%3.png").arg(folder, name.c_str()).arg(number++));
		}
		return true;
	});
}

void
speak(const std::string& language)
{
	const fs::path file = fs::path(TEST_DATA) / "../../Language" / (language + ".llt");
	// As an editor saves it: the chosen language's file gets another content.
	fs::copy_file(file, sAddOns / "Language/English.llt", fs::copy_options::overwrite_existing);
	fs::last_write_time(sAddOns / "Language/English.llt", fs::file_time_type::clock::now());
}

} // namespace

TEST(Labels, FollowTheAcceleratorsAndTheLanguageEverywhere)
{
	ASSERT_TRUE(load_shipped_language("English"));
	ASSERT_TRUE(wait_until([] { return has_window("Qubo") && has_window("Lyrics"); }));
	// The player hears of its add-ons after they have shown themselves.
	ASSERT_TRUE(wait_until([] {
		return choose_in_player_menu({"Add-ons", "Tavora Displayer", "About…"});
	}));
	ASSERT_TRUE(wait_until([] { return has_window("About Tavora Displayer"); }));
	EXPECT_TRUE(wait_until([] { return says("About", "OK (O)"); }))
		<< names_in("About").join('|').toStdString();
	EXPECT_TRUE(says("About", "Tavora Displayer"));

	EXPECT_TRUE(popup_says("Lyrics", "Stay on top (T)"));
	ASSERT_TRUE(choose_in_popup("Common preferences (M)…"));
	ASSERT_TRUE(wait_until([] { return has_window("MERION Common Preferences"); }));

	// The format of accelerators takes effect at once, in open windows and in the menu.
	ASSERT_TRUE(press("MERION", "Open  Alt+O"));
	EXPECT_TRUE(wait_until([] { return says("About", "OK  Alt+O"); }))
		<< names_in("About").join('|').toStdString();
	EXPECT_TRUE(popup_says("Lyrics", "Stay on top  Alt+T"));
	close_popup();

	for (const char* language : kLanguages) {
		ASSERT_TRUE(load_shipped_language(language));
		const bigtime_t before = system_time();
		speak(language);
		const std::string about = gLLT->Text("Win_Title_About");
		const std::string common = gLLT->Text("Win_Title_Common_Pref");
		const std::string lyrics = gLLT->Text("Win_Title_Display");
		EXPECT_TRUE(wait_until([&] {
			return has_window(about) && has_window(common) && has_window(lyrics)
				&& says(about, gLLT->Text("Tab_About"))
				&& says(about, gLLT->Text("About_Licence_Text"))
				&& says(common, gLLT->Text("Button_Cancel"))
				&& says(common, gLLT->Text("Box_AccKeyFormat"));
		})) << language
			<< names_in(about).join('|').toStdString() << names_in(common).join('|').toStdString();
		EXPECT_LT(system_time() - before, kLanguagePatience) << language;
		EXPECT_TRUE(popup_says(lyrics, gLLT->Text("PopMItem_Position"))) << language;
		save_pictures(language);
		close_popup();
	}
}

int
main(int argc, char** argv)
{
	testing::InitGoogleTest(&argc, argv);
	alarm(110);
	TempFolder folder;
	setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
	// its ports too: what is chosen here is told to each of the maker's programs that run
	setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1);
	setenv("QUBO_AO", "null", 1);
	setenv("QT_QPA_PLATFORM", "offscreen", 0);
	setenv("LC_ALL", "C.UTF-8", 1);
	sAddOns = fs::path(folder / "add-ons");
	fs::copy(ADD_ONS, sAddOns, fs::copy_options::recursive);

	CommandLine line;
	std::string error;
	if (!line.Parse({"--add-ons", sAddOns.string(), TEST_DATA "/../../demo"}, error)) {
		fprintf(stderr, "%s\n", error.c_str());
		return 1;
	}
	int result = 1;
	{
		QuboApp application(line);
		std::thread tests([&result] {
			result = RUN_ALL_TESTS();
			be_app->PostMessage(B_QUIT_REQUESTED);
		});
		application.Run();
		tests.join();
	}
	return result;
}
