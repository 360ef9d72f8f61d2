#pragma once

/* Prints how much memory the process has, and how many mappings. */
void printMemory(int rounds);
