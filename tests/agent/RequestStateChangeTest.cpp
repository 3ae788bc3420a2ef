// The method RequestStateChange of a job, as clients invoke it.

#include <cstdint>
#include <gmock/gmock.h>

#include "cim/MethodSignatures.h"
#include "core/CimPropertyTypes.h"
#include "tests/agent/ConcreteJobFixture.h"
#include "tests/agent/NoMoreThreads.h"

namespace {

using test::HasRecordOf;
using test::LogLevel;

class RequestStateChange : public test::ConcreteJobFixture {
 protected:
  std::uint32_t invoke() {
    return m_job->invokeMethod("RequestStateChange", &m_in, nullptr, nullptr);
  }

  core::CimPropertyUint16 m_requestedState{"RequestedState", nullptr};
  core::CimPropertyDatetime m_timeoutPeriod{"TimeoutPeriod", nullptr};
  core::CimPropertyList m_in;
};

TEST_F(RequestStateChange, StartsANewJob) {
  m_requestedState.setValue(2);
  m_timeoutPeriod.setValue(utils::Datetime(1'000'000));
  m_in.add(&m_requestedState);
  m_in.add(&m_timeoutPeriod);
  m_midApi.holdWrites();

  EXPECT_EQ(invoke(), cim::kStateChanged);
  EXPECT_TRUE(m_midApi.awaitHeldWrite());
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Running);
  finish();
}

TEST_F(RequestStateChange, NeedsNoTimeout) {
  m_requestedState.setValue(2);
  m_in.add(&m_requestedState);

  EXPECT_EQ(invoke(), cim::kStateChanged);
  finish();
}

TEST_F(RequestStateChange, RefusesAStartedJob) {
  startAndHold();
  m_requestedState.setValue(2);
  m_in.add(&m_requestedState);

  EXPECT_EQ(invoke(), cim::kInvalidStateTransition);
  finish();
}

TEST_F(RequestStateChange, RefusesOtherStates) {
  m_requestedState.setValue(4);
  m_in.add(&m_requestedState);

  EXPECT_EQ(invoke(), cim::kStateChangeInvalid);
  EXPECT_EQ(m_job->getJobState(), cim::JobState::New);
}

TEST_F(RequestStateChange, ReportsAThreadThatDoesNotStart) {
  m_requestedState.setValue(2);
  m_in.add(&m_requestedState);
  makeJobByTheClock();
  const test::NoMoreThreads noMoreThreads;

  EXPECT_EQ(invoke(), cim::kStateChangeFailed);
}

TEST_F(RequestStateChange, NeedsTheState) {
  EXPECT_EQ(invoke(), cim::kStateChangeInvalid);
  m_in.add(&m_requestedState);  // NULL
  EXPECT_EQ(invoke(), cim::kStateChangeInvalid);
  EXPECT_EQ(m_job->getJobState(), cim::JobState::New);
}

TEST_F(RequestStateChange, TakesAnArgumentOfAnotherTypeForMissing) {
  core::CimPropertyUint32 requestedState("RequestedState", nullptr);
  requestedState.setValue(2);
  m_in.add(&requestedState);
  EXPECT_EQ(invoke(), cim::kStateChangeInvalid);

  core::CimPropertyString timeoutPeriod("TimeoutPeriod", nullptr);
  timeoutPeriod.setValue("soon");
  m_requestedState.setValue(2);
  m_in.add(&m_requestedState);
  m_in.add(&timeoutPeriod);
  EXPECT_EQ(invoke(), cim::kStateChanged);
  finish();
}

TEST_F(RequestStateChange, IsTheMethodThatAJobRegisters) {
  EXPECT_TRUE(m_job->hasMethod("RequestStateChange"));
  EXPECT_THAT(m_log.records(),
              HasRecordOf("CimInstance", LogLevel::Debug, "core::CimInstance::addMethod",
                          "Adding new RequestStateChange method for Orvex_ConcreteJob class"));
}

}  // namespace
