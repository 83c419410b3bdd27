#pragma once

/// The events that a flow logger takes, by the index that `LogEvent` expects. A logger does not
/// check the index.
enum FlowEvent {
    FlowEventFirstPoint = 0, ///< recorded like `FlowEventTimingPoint`
    FlowEventRootError = 1,
    FlowEventCascadeError = 2,
    FlowEventDismissedError = 3,
    FlowEventConstruction = 4,
    FlowEventDestruction = 5,
    FlowEventStateChange = 6,
    FlowEventScopePush = 7,
    FlowEventScopePop = 8,
    FlowEventTimingPoint = 9,
    FlowEventReturnError = 10,
    FlowEventWarning = 11,
    FlowEventMessageSend = 12,
    FlowEventMessageReceive = 13
};
