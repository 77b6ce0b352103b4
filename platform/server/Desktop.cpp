#include "server/Desktop.h"

#include "server/FontFallback.h"
#include "server/Keys.h"
#include "server/X11Extras.h"

#include <QApplication>
#include <QCursor>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLocale>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <QStyleHints>
#include <atomic>
#include <mutex>

namespace BPrivate {

static std::mutex sMutex;
static std::atomic<float> sScale = 1;
static std::atomic<int32> sFontGeneration = 1;
static std::function<uint32()> sModifierSource;
static std::function<void()> sScreensChanged;

//! With sMutex held.
static DesktopInfo&
current_info()
{
	static DesktopInfo* info = new DesktopInfo;
	return *info;
}

DesktopInfo
desktop_info()
{
	std::lock_guard lock(sMutex);
	return current_info();
}

float
desktop_scale()
{
	return sScale;
}

int32
font_generation()
{
	return sFontGeneration;
}

namespace {

struct ColorRole {
	color_which which;
	QPalette::ColorRole role;
};

constexpr ColorRole kColorRoles[] = {
	{B_PANEL_BACKGROUND_COLOR, QPalette::Window},
	{B_MENU_BACKGROUND_COLOR, QPalette::Window},
	{B_KEYBOARD_NAVIGATION_COLOR, QPalette::Highlight},
	{B_DESKTOP_COLOR, QPalette::Dark},
	{B_MENU_SELECTED_BACKGROUND_COLOR, QPalette::Highlight},
	{B_MENU_ITEM_TEXT_COLOR, QPalette::WindowText},
	{B_MENU_SELECTED_ITEM_TEXT_COLOR, QPalette::HighlightedText},
	{B_PANEL_TEXT_COLOR, QPalette::WindowText},
	{B_DOCUMENT_BACKGROUND_COLOR, QPalette::Base},
	{B_DOCUMENT_TEXT_COLOR, QPalette::Text},
	{B_CONTROL_BACKGROUND_COLOR, QPalette::Button},
	{B_CONTROL_TEXT_COLOR, QPalette::ButtonText},
	{B_CONTROL_HIGHLIGHT_COLOR, QPalette::Highlight},
	{B_TOOL_TIP_BACKGROUND_COLOR, QPalette::ToolTipBase},
	{B_TOOL_TIP_TEXT_COLOR, QPalette::ToolTipText},
	{B_LINK_TEXT_COLOR, QPalette::Link},
};

std::vector<std::pair<color_which, rgb_color>>
read_colors()
{
	const QPalette palette = QGuiApplication::palette();
	std::vector<std::pair<color_which, rgb_color>> colors;
	for (const ColorRole& role : kColorRoles) {
		QColor color = palette.color(QPalette::Active, role.role);
		colors.emplace_back(
			role.which, make_color(color.red(), color.green(), color.blue(), color.alpha()));
	}
	return colors;
}

std::vector<ScreenInfo>
read_screens()
{
	QList<QScreen*> screens = QGuiApplication::screens();
	if (QScreen* main = QGuiApplication::primaryScreen()) {
		screens.removeOne(main);
		screens.prepend(main);
	}
	std::vector<ScreenInfo> infos;
	for (QScreen* screen : screens)
		infos.push_back({screen->geometry(), static_cast<float>(screen->devicePixelRatio())});
	return infos;
}

bool
has_han(const QString& family)
{
	const QList<QFontDatabase::WritingSystem> systems = QFontDatabase::writingSystems(family);
	return systems.contains(QFontDatabase::SimplifiedChinese)
		|| systems.contains(QFontDatabase::TraditionalChinese)
		|| systems.contains(QFontDatabase::Japanese) || systems.contains(QFontDatabase::Korean);
}

float
size_in_pixels(const QFont& font)
{
	return font.pixelSize() > 0 ? font.pixelSize() : QFontInfo(font).pixelSize();
}

void
read_fonts(DesktopInfo& info)
{
	const QFont plain = QGuiApplication::font();
	const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
	info.plainFamily = QFontInfo(plain).family();
	info.plainSize = size_in_pixels(plain);
	info.fixedFamily = QFontInfo(fixed).family();
	info.fixedSize = size_in_pixels(fixed);
	info.hanFamily = han_family(
		QLocale().language(), QFontDatabase::families(QFontDatabase::Japanese), info.plainFamily);
	info.plainHasHan = has_han(info.plainFamily);
	info.clickSpeed = QGuiApplication::styleHints()->mouseDoubleClickInterval() * 1000LL;
}

void
refresh()
{
	DesktopInfo info;
	info.screens = read_screens();
	info.colors = read_colors();
	read_fonts(info);
	float scale = 1;
	for (const ScreenInfo& screen : info.screens)
		scale = std::max(scale, screen.scale);
	sScale = scale;
	std::lock_guard lock(sMutex);
	current_info() = std::move(info);
}

void
screens_changed()
{
	refresh();
	if (sScreensChanged)
		sScreensChanged();
}

void
watch_screen(QScreen* screen)
{
	QObject::connect(screen, &QScreen::geometryChanged, qApp, screens_changed);
	QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, qApp, screens_changed);
	QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, qApp, screens_changed);
}

//! The colours and the font of the theme come as events.
class ThemeWatcher : public QObject {
public:
	using QObject::QObject;
	bool eventFilter(QObject* object, QEvent* event) override
	{
		if (object == qApp
			&& (event->type() == QEvent::ApplicationPaletteChange
				|| event->type() == QEvent::ApplicationFontChange))
			refresh();
		return false;
	}
};

} // namespace

namespace Desktop {

void
Watch(std::function<void()> screensChanged)
{
	sScreensChanged = std::move(screensChanged);
	refresh();
	for (QScreen* screen : QGuiApplication::screens())
		watch_screen(screen);
	QObject::connect(qApp, &QGuiApplication::screenAdded, qApp, [](QScreen* screen) {
		watch_screen(screen);
		screens_changed();
	});
	QObject::connect(qApp, &QGuiApplication::screenRemoved, qApp, [] { screens_changed(); });
	QObject::connect(qApp, &QGuiApplication::primaryScreenChanged, qApp, [] { screens_changed(); });
	QObject::connect(qApp, &QGuiApplication::fontDatabaseChanged, qApp, [] {
		sFontGeneration++;
		refresh();
	});
	qApp->installEventFilter(new ThemeWatcher(qApp));
}

PointerState
Pointer()
{
	PointerState state;
	state.where = QCursor::pos();
	state.buttons = platform_buttons(QGuiApplication::mouseButtons());
	X11Extras::PointerMask mask;
	if (X11Extras::QueryPointer(mask))
		state.buttons = mask.buttons;
	state.modifiers = Modifiers();
	return state;
}

uint32
Modifiers()
{
	if (sModifierSource)
		return sModifierSource();
	uint32 modifiers = platform_modifiers(QGuiApplication::queryKeyboardModifiers());
	X11Extras::PointerMask mask;
	if (X11Extras::QueryPointer(mask))
		modifiers |= mask.locks;
	return modifiers;
}

void
SetModifierSource(std::function<uint32()> source)
{
	sModifierSource = std::move(source);
}

QImage
Grab(QRect part)
{
	float scale = sScale;
	QImage image(part.size() * scale, QImage::Format_RGB32);
	image.setDevicePixelRatio(scale);
	image.fill(Qt::black);
	QPainter painter(&image);
	bool hasAny = false;
	for (QScreen* screen : QGuiApplication::screens()) {
		const QRect common = part & screen->geometry();
		if (common.isEmpty())
			continue;
		const QRect local = common.translated(-screen->geometry().topLeft());
		const QPixmap pixmap
			= screen->grabWindow(0, local.x(), local.y(), local.width(), local.height());
		hasAny = hasAny || !pixmap.isNull();
		painter.drawPixmap(common.translated(-part.topLeft()), pixmap);
	}
	painter.end();
	return hasAny ? image : QImage();
}

} // namespace Desktop
} // namespace BPrivate
