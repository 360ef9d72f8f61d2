/// \file
/// Includes every public header of the library.
#pragma once

#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/CommandRecorder.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/Export.h"
#include "vexautilutil/FileSystem.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/InvalidInstructionsException.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroOptionPerformer.h"
#include "vexautilutil/MacroTokens.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/StyleValue.h"
#include "vexautilutil/TaskProgressBar.h"
#include "vexautilutil/UInt64MacroOption.h"
