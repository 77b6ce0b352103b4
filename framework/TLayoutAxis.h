#pragma once

#include <cstddef>
#include <vector>

namespace merion {

/*!	One direction of a layout: things on a line of a designed length, some of which need more room than they have.
	A thing moves as little as it must, and with it all that begins farther on, so that what began at one place still does.
	Lengths and places: pixels as BRect counts them, from the container's edge. Thread: any. */
class TLayoutAxis {
public:
	enum class Follow { kStart, kEnd, kBoth }; // which of the container's edges

	struct Span {
		float start;
		float end;
	};

	struct Item {
		Span design;
		float needed; // length, not less than designed
		Span across;  // where it lies in the other direction: only those that meet there keep apart
		Follow follow;
	};

	//! `minGap`: what a designed gap may shrink to, when something grows into it.
	TLayoutAxis(std::vector<Item> items, float length, float minGap);

	//! Of the container, not less than designed.
	float MinLength() const { return fMinLength; }
	//! Where each item goes in a container of this length, which is MinLength() at least.
	std::vector<Span> Place(float length) const;

private:
	void Shift();
	float LatestEnd(size_t index, float length, const std::vector<Span>& placed) const;

	std::vector<Item> fItems;
	std::vector<size_t> fOrder; // indices by their starts
	std::vector<float> fStarts; // of the items, as near to the start as can be
	float fLength;
	float fMinGap;
	float fMinLength;
};

} // namespace merion
