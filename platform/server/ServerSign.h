#pragma once

#include <QIcon>
#include <QWidget>

namespace BPrivate {

/*!	The sign beside an alert's text: the desktop's own, else one that is drawn, sharp at any scale.
	Server thread only. */
class ServerSign : public QWidget {
public:
	enum class Kind { kInfo, kWarning, kStop };

	void SetKind(Kind kind);

protected:
	void paintEvent(QPaintEvent* event) override;

private:
	void Draw(QPainter& painter) const;

	QIcon fIcon; // null: none in the desktop's theme
	Kind fKind = Kind::kInfo;
};

} // namespace BPrivate
