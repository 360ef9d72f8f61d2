// The scripted add-on with an id and a title that would steer a terminal. The tests know the id as kHarmfulId.

#define ADDON_ID "EVIL\033[2J\302\233H\342\200\256\377"
#define ADDON_TITLE "Title\n\033]0;x\a"

#include "ScriptedAddOn.cpp"
