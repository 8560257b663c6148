#include "card/CardCommands.h"

namespace card {

QString withArgument(const QString& command, const QString& argument)
{
    return command + argument;
}

} // namespace card
