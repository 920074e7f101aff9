#include "engine/FailureFixture.h"

namespace {

/// The ways into a state that outlasts a call.
enum class Way { created, idle, started, noStream, noRecord, frameLost, badStop, done, cancelled };

struct Cell {
    int result;
    int stateAfter;
};

struct Row {
    const char* name;
    Way way;
    int state;
    Cell init, start, frame, stop, cancel, reset, trajectory;
};

// A capture that ends is in 7 by the time the state is asked for.
constexpr Row kTable[] = {
    {"created", Way::created, -1, {0, 9}, {4, -1}, {4, -1}, {4, -1}, {4, -1}, {0, -1}, {7, -1}},
    {"idle", Way::idle, 9, {0, 9}, {0, 9}, {7, 9}, {7, 9}, {0, 7}, {0, 9}, {7, 9}},
    {"started", Way::started, 9, {0, 9}, {0, 9}, {0, 9}, {0, 7}, {0, 7}, {0, 9}, {0, 9}},
    {"no stream", Way::noStream, 1, {0, 9}, {4, 1}, {4, 1}, {4, 1}, {4, 1}, {0, 1}, {7, 1}},
    {"no record", Way::noRecord, 1, {0, 9}, {4, 1}, {4, 1}, {4, 1}, {4, 1}, {0, 1}, {7, 1}},
    {"frame lost", Way::frameLost, 3, {0, 9}, {4, 3}, {4, 3}, {4, 3}, {4, 3}, {0, 3}, {0, 3}},
    {"stop failed", Way::badStop, 5, {0, 9}, {4, 5}, {4, 5}, {4, 5}, {4, 5}, {0, 5}, {0, 5}},
    {"done", Way::done, 7, {0, 9}, {0, 9}, {4, 7}, {4, 7}, {4, 7}, {0, 7}, {7, 7}},
    {"cancelled", Way::cancelled, 7, {0, 9}, {0, 9}, {4, 7}, {4, 7}, {4, 7}, {0, 7}, {7, 7}},
};

class StateTableTest : public FailureTest {
  protected:
    void loseAFrame() {
        failure::setGateOpen(false);
        int result = 0;
        while (result == 0) {
            failure::failAllocation(1);
            result = setFrame();
            failure::allocationFailed();
        }
        failure::setGateOpen(true);
    }

    void reach(Way way) {
        listener.mLast = 0;
        if (way == Way::created)
            return;
        ASSERT_EQ(init(), 0);
        if (way == Way::idle)
            return;
        if (way == Way::noStream || way == Way::noRecord) {
            _OBW_ENGINE_INIT_PARAM bad = param;
            if (way == Way::noStream)
                bad.fpMP4 = nullptr;
            else
                bad.pWideReelInfo = nullptr;
            ASSERT_EQ(engine().start(&bad), OBW_RESULT_INVALID_PARAM);
            return;
        }
        ASSERT_EQ(start(), 0);
        ASSERT_EQ(setFrame(), 0) << "a recording without frames fails";
        if (way == Way::frameLost)
            loseAFrame();
        if (way == Way::badStop) {
            failure::failAllocation(1);
            ASSERT_EQ(stop(), OBW_RESULT_FAIL);
            failure::allocationFailed();
        }
        if (way == Way::done) {
            ASSERT_EQ(stop(), 0);
            listener.await(100);
        }
        if (way == Way::cancelled) {
            ASSERT_EQ(engine().cancel(), 0);
        }
    }

    void check(const Row& row, const char* operation, const Cell& cell,
               int (*call)(StateTableTest&)) {
        SCOPED_TRACE(std::string(row.name) + ": " + operation);
        reach(row.way);
        ASSERT_EQ(failure::stateOf(engine()), row.state);
        EXPECT_EQ(call(*this), cell.result);
        if (row.way == Way::started && cell.stateAfter == 7 && std::string("stop") == operation)
            listener.await(100);
        EXPECT_EQ(failure::stateOf(engine()), cell.stateAfter);
        EXPECT_EQ(engine().deinit(), 0);
        EXPECT_EQ(failure::stateOf(engine()), 9);
        kelOBWEngine::ResetInstance();
        EXPECT_FALSE(tempDirExists());
    }
};

TEST_F(StateTableTest, EveryCallInEveryStateGivesItsResultAndState) {
    for (const Row& row : kTable) {
        check(row, "init", row.init, [](StateTableTest& t) { return t.init(); });
        check(row, "start", row.start, [](StateTableTest& t) { return t.start(); });
        check(row, "frame", row.frame, [](StateTableTest& t) { return t.setFrame(); });
        check(row, "stop", row.stop, [](StateTableTest& t) { return t.stop(); });
        check(row, "cancel", row.cancel, [](StateTableTest& t) { return t.engine().cancel(); });
        check(row, "reset", row.reset, [](StateTableTest& t) { return t.engine().reset(); });
        check(row, "trajectory", row.trajectory, [](StateTableTest& t) { return t.trajectory(); });
    }
}

}  // namespace
