/* The thread on which the host runs commands. It is not the thread that loads add-ons. */
#pragma once

/* Runs `work` on the worker's thread and waits until it has returned. */
void runOnWorker(void (*work)(void* data), void* data);
