// Calls to controls that may be null: tell() then does nothing, ask() returns null, 0 or false.

#pragma once

#include <functional>
#include <type_traits>
#include <utility>

template <class Control, class Message, class... Arguments>
void tell(Control* control, Message message, Arguments&&... arguments) {
    if (control != nullptr) {
        std::invoke(message, control, std::forward<Arguments>(arguments)...);
    }
}

template <class Control, class Question>
[[nodiscard]] std::invoke_result_t<Question, Control*> ask(Control* control, Question question) {
    return control == nullptr ? std::invoke_result_t<Question, Control*>() : std::invoke(question, control);
}
