#include "farmcommand.h"

const char* actionWord(FarmCommand::Action action)
{
    switch (action) {
    case FarmCommand::Action::Pause:
        return "pause";
    case FarmCommand::Action::Resume:
        return "resume";
    case FarmCommand::Action::Abort:
        return "abort";
    case FarmCommand::Action::Stop:
        return "stop";
    case FarmCommand::Action::Priority:
        return "priority";
    case FarmCommand::Action::Status:
        break;
    }
    return "status";
}

const char* outcomeWord(FarmCommand::Outcome outcome)
{
    switch (outcome) {
    case FarmCommand::Outcome::Accepted:
        return "accepted";
    case FarmCommand::Outcome::Refused:
        return "refused";
    case FarmCommand::Outcome::Unreachable:
        return "unreachable";
    case FarmCommand::Outcome::TimedOut:
        break;
    }
    return "timed out";
}
