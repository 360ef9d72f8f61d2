// A library that an add-on needs, and that is not where it is looked for.

extern "C" __attribute__((visibility("default"))) void vexaGone();
void vexaGone() {}
