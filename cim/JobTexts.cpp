// Jobs, and what belongs to them.

#include "cim/SchemaTexts.h"
#include "cim/TextTables.h"
#include "cim/ValueTables.h"

namespace cim {
namespace {

using core::ClassText;
using core::ElementText;
using core::MethodText;

constexpr ElementText kJob[] = {
    {"JobStatus", "The status of the job in words; JobState says it by number."},
    {"TimeSubmitted", "When the job was submitted."},
    {"ScheduledStartTime", "When the job is to start, where it does not start at once."},
    {"StartTime", "When the job was started."},
    {"ElapsedTime", "How long the job has been running, or ran until its end."},
    {"JobRunTimes", "How often the job is to run; 1 for a job that runs once."},
    {"RunMonth", "The month in which a scheduled job is to run.", kMonths},
    {"RunDay",
     "The day of the month on which a scheduled job is to run; negative days count from the "
     "month's end."},
    {"RunDayOfWeek",
     "The day of the week on which a scheduled job is to run; before RunDay for a "
     "negative value, behind it for a positive one.",
     kRunDaysOfWeek},
    {"RunStartInterval", "How long after midnight a scheduled job is to start."},
    {"LocalOrUtcTime", "Whether the times of a scheduled job are local times or UTC.",
     kLocalOrUtcTimes},
    {"UntilTime", "The time behind which a scheduled job is not to be started any more."},
    {"Notify", "Who is told when the job has ended or failed."},
    {"Owner", "Who submitted the job."},
    {"Priority", "How urgent the job is; 0 stands for the highest priority."},
    {"PercentComplete",
     "How much of the job is done; 100 when it has been completed.",
     {},
     core::kPercent},
    {"DeleteOnCompletion", "Whether the job is deleted as soon as it has ended."},
    {"ErrorCode", "The error with which the job ended; 0 while there is none."},
    {"ErrorDescription",
     "The error with which the job ended, in words; empty while there is none."},
    {"RecoveryAction", "What is to be done when the job has failed.", kRecoveryActions},
    {"OtherRecoveryAction", "What is to be done in words, where RecoveryAction is 1 (Other)."},
};

constexpr ElementText kConcreteJob[] = {
    {"InstanceID", "Identifies the job among all instances of its namespace."},
    {"Name", "The name by which people know the job."},
    {"JobState", "How far the job has come: whether it waits, runs, or has ended and how.",
     kJobStates},
    {"TimeOfLastStateChange", "When JobState last changed."},
    {"TimeBeforeRemoval", "How long the job stays at least when it has ended."},
};

constexpr ElementText kStateChangeParameters[] = {
    {"RequestedState", "What the job shall do.", kJobStateRequests},
    {"TimeoutPeriod", "The longest time that the change may take; NULL or 0 sets no limit."},
};

constexpr MethodText kConcreteJobMethods[] = {
    {"RequestStateChange", "Asks that the job start, pause or end.", kStateChangeParameters,
     kStateChangeReturns},
};

constexpr ElementText kAffectedJobElement[] = {
    {"AffectedElement", "The element that the job affects."},
    {"AffectingElement", "The job that affects the element."},
    {"ElementEffects", "How the job affects the element.", kJobElementEffects},
    {"OtherElementEffectsDescriptions",
     "The effects in words, one for each value of ElementEffects."},
};

constexpr ElementText kOwningJobElement[] = {
    {"OwningElement", "The element that created the job."},
    {"OwnedElement", "The job that the element created."},
};

constexpr ClassText kTexts[] = {
    {"CIM_Job",
     "A piece of work that is under way, is to be done, or has been done.",
     kJob,
     {},
     kSchemaVersion,
     true},
    {"CIM_ConcreteJob", "A job that can be followed by its state.", kConcreteJob,
     kConcreteJobMethods, kSchemaVersion},
    {"CIM_AffectedJobElement",
     "A job affects an element.",
     kAffectedJobElement,
     {},
     kSchemaVersion},
    {"CIM_OwningJobElement",
     "An element has created a job and owns it.",
     kOwningJobElement,
     {},
     kSchemaVersion},
};

}  // namespace

std::span<const ClassText> getJobTexts() {
  return kTexts;
}

}  // namespace cim
