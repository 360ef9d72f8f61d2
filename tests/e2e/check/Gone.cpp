// A library that an add-on needs, in a folder where the loader does not search.

extern "C" __attribute__((visibility("default"))) void vexaGone();
void vexaGone() {}
