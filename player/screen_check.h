#pragma once

/*!	Is there a screen that windows can be shown on? The toolkit would end the process by a signal. A platform of the toolkit's that
	was chosen by name ($QT_QPA_PLATFORM) and needs none is believed. */
[[nodiscard]] bool has_screen();
