#pragma once

/*!	Fits the allocator to this program: many threads that allocate little, and the player library, which fills and frees 10 MB to
	look at each file. Before the first thread. */
void tune_allocator();

/*!	Gives back what only the start of the program or of a song has needed: free heap, and the pages of the libraries that were
	touched while those were loaded. What is needed again comes back by itself. Any thread; takes some milliseconds. */
void release_start_memory();
