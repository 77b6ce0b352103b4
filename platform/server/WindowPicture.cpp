#include "server/WindowPicture.h"

#include "interface/WindowData.h"
#include "server/Registry.h"
#include "server/ServerLink.h"
#include "server/ServerWindow.h"

namespace BPrivate {

status_t
save_window_picture(BWindow* window, const char* pngPath)
{
	if (window == NULL || pngPath == NULL || !window->IsLocked())
		return B_NOT_ALLOWED;
	WindowData& data = WindowData::Of(window);
	data.Update(true);
	auto picture = ServerLink::Default().Call([id = data.id] {
		auto* server = Registry::Default().Find<ServerWindow>(id);
		return server != nullptr ? server->Content()->grab().toImage() : QImage();
	});
	if (!picture || picture->isNull())
		return B_ERROR;
	return picture->save(QString::fromUtf8(pngPath), "PNG") ? B_OK : B_IO_ERROR;
}

} // namespace BPrivate
