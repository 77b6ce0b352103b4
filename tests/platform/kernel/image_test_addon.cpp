// An add-on for the image tests: tells when it is unloaded.

extern "C" {
int gImageTestValue = 42;
bool* gImageTestUnloaded = nullptr;

int
image_test_answer()
{
	return gImageTestValue++;
}
}

[[gnu::destructor]] static void
tell_unloaded()
{
	if (gImageTestUnloaded != nullptr)
		*gImageTestUnloaded = true;
}
