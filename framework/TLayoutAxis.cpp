#include "framework/TLayoutAxis.h"

#include <algorithm>
#include <numeric>

namespace merion {

namespace {

bool
meet(const TLayoutAxis::Span& a, const TLayoutAxis::Span& b)
{
	return a.start <= b.end && b.start <= a.end;
}

// Things that were designed over each other are left so.
bool
is_before(const TLayoutAxis::Item& a, const TLayoutAxis::Item& b)
{
	return a.design.end <= b.design.start && meet(a.across, b.across);
}

float
gap_between(const TLayoutAxis::Item& a, const TLayoutAxis::Item& b)
{
	return b.design.start - a.design.end;
}

} // namespace

TLayoutAxis::TLayoutAxis(std::vector<Item> items, float length, float minGap)
	: fItems(std::move(items)),
	  fOrder(fItems.size()),
	  fStarts(fItems.size()),
	  fLength(length),
	  fMinGap(minGap),
	  fMinLength(length)
{
	std::iota(fOrder.begin(), fOrder.end(), 0);
	std::stable_sort(fOrder.begin(), fOrder.end(),
		[this](size_t a, size_t b) { return fItems[a].design.start < fItems[b].design.start; });
	Shift();
	float margin = length;
	for (const Item& item : fItems)
		margin = std::min(margin, std::max(0.0f, length - item.design.end));
	for (size_t i = 0; i < fItems.size(); i++)
		fMinLength = std::max(fMinLength, fStarts[i] + fItems[i].needed + margin);
}

void
TLayoutAxis::Shift()
{
	float shift = 0;
	for (size_t at = 0; at < fOrder.size();) {
		// all that begin at one place
		const float start = fItems[fOrder[at]].design.start;
		size_t end = at;
		for (; end < fOrder.size() && fItems[fOrder[end]].design.start == start; end++) {
			const Item& item = fItems[fOrder[end]];
			for (size_t before = 0; before < at; before++) {
				const Item& other = fItems[fOrder[before]];
				if (!is_before(other, item))
					continue;
				const float gap = std::min(gap_between(other, item), fMinGap);
				shift = std::max(shift, fStarts[fOrder[before]] + other.needed + gap - start);
			}
		}
		for (; at < end; at++)
			fStarts[fOrder[at]] = start + shift;
	}
}

std::vector<TLayoutAxis::Span>
TLayoutAxis::Place(float length) const
{
	std::vector<Span> placed(fItems.size());
	// from the end on, as what follows the end has its place by what lies behind it
	for (auto at = fOrder.rbegin(); at != fOrder.rend(); ++at) {
		const Item& item = fItems[*at];
		const float first = fStarts[*at];
		Span& span = placed[*at];
		span = {first, first + item.needed};
		if (item.follow == Follow::kStart)
			continue;
		span.end = std::max(span.end, LatestEnd(*at, length, placed));
		if (item.follow == Follow::kEnd)
			span.start = span.end - item.needed;
	}
	return placed;
}

float
TLayoutAxis::LatestEnd(size_t index, float length, const std::vector<Span>& placed) const
{
	const Item& item = fItems[index];
	float end = length - (fLength - item.design.end);
	for (size_t i = 0; i < fItems.size(); i++) {
		if (is_before(item, fItems[i]))
			end = std::min(end, placed[i].start - gap_between(item, fItems[i]));
	}
	return end;
}

} // namespace merion
