#pragma once

#include <SupportDefs.h>

class BHandler;
class BLooper;

/*!	Numbers that stand for the process's handlers in messages and messengers. A number is never given out twice, so
	one of a deleted handler finds nothing. Any thread.
	What is found stays valid only while its looper is locked: a looper trusts what the table says belongs to it. */
namespace BPrivate::TokenTable {

int32 Add(BHandler* handler);
void Remove(int32 token);
void SetLooper(int32 token, BLooper* looper);
//! Both may be NULL.
bool Find(int32 token, BHandler** handler, BLooper** looper);

} // namespace BPrivate::TokenTable
