#pragma once

/// The events that a flow logger takes, by the index that `LogEvent` expects, each with its two
/// parameters where the runtime records it. A logger does not check the index.
enum FlowEvent {
    FlowEventFirstPoint = 0, ///< recorded like `FlowEventTimingPoint`
    FlowEventRootError = 1,  ///< id of the error's literal, source line
    FlowEventCascadeError = 2,
    FlowEventDismissedError = 3, ///< 0, source line
    FlowEventConstruction = 4,   ///< 0, source line
    FlowEventDestruction = 5,    ///< 0, source line
    FlowEventStateChange = 6,    ///< new state, number of the caller's choice
    FlowEventScopePush = 7,      ///< two numbers of the caller's choice
    FlowEventScopePop = 8,       ///< those of the push
    FlowEventTimingPoint = 9,    ///< two numbers of the caller's choice
    FlowEventReturnError = 10,
    FlowEventWarning = 11,
    FlowEventMessageSend = 12,
    FlowEventMessageReceive = 13,
    FlowEventEnd ///< the first index that is none
};
