#include "engine/MCommand.h"

MCommand::~MCommand() = default;
