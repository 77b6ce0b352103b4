#include <Flattenable.h>

BFlattenable::~BFlattenable() = default;

bool
BFlattenable::AllowsTypeCode(type_code code) const
{
	return code == TypeCode();
}
