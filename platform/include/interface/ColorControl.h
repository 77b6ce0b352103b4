#pragma once

#include <Control.h>
#include <memory>
#include <vector>

//! Columns and rows of the cells that the control is as large as.
enum color_control_layout {
	B_CELLS_4x64 = 4,
	B_CELLS_8x32 = 8,
	B_CELLS_16x16 = 16,
	B_CELLS_32x8 = 32,
	B_CELLS_64x4 = 64,
};

/*!	A colour to choose: for each of red, green and blue a ramp, for the mouse and the arrow keys, and a number to type.
	The value is 0xRRGGBB00, at first black. The message is sent whenever the user changes the colour, while a ramp is
	dragged too, and not by SetValue(). */
class BColorControl : public BControl {
public:
	/*!	As large as it prefers to be. `bufferedDrawing` is of no effect: what is drawn never flickers. */
	BColorControl(BPoint leftTop, color_control_layout layout, float cellSize, const char* name,
		BMessage* message = NULL, bool bufferedDrawing = false);
	explicit BColorControl(BMessage* data);
	~BColorControl() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the three text controls that the platform's own control has for its numbers.
	status_t Archive(BMessage* data, bool deep = true) const override;

	void GetPreferredSize(float* width, float* height) override;
	void SetValue(int32 color) override;
	//! Without its alpha.
	void SetValue(rgb_color color);
	rgb_color ValueAsColor();

	/*!	The ramps together take about as much room as that many cells; not less than can be used. Both bring the control to its new
		preferred size. What is no layout, or no size above 0, is ignored. */
	virtual void SetLayout(color_control_layout layout);
	color_control_layout Layout() const;
	virtual void SetCellSize(float size);
	float CellSize() const;

private:
	void Init();
	std::vector<std::unique_ptr<BView>> NumberFields() const;
	void TellCells();

	color_control_layout fLayout;
	float fCellSize;
};

inline void
BColorControl::SetValue(rgb_color color)
{
	SetValue(int32(uint32(color.red) << 24 | uint32(color.green) << 16 | uint32(color.blue) << 8));
}
