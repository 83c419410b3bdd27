// A mistake a line. Behind it stands what the compiler is to say of it.

#include <varek/Varek.h>

struct Owning final : MDesyncEvent {
    void Fire() override {}
    std::wstring text;
};
struct Undescribed {
};
struct Described {
};
void Describe(varek::Filing&, Described&);

void Misuse(MCommandProcessor& processor, varek::Filing& filing, varek::Failure& failure,
            MError& error, Undescribed& undescribed, Described& described)
{
    // clang-format off
    varek::Call(processor, [](int) {}); // what is called takes no arguments: capture what it needs in a lambda
    varek::Post([](int) {}); // what is called takes no arguments: capture what it needs in a lambda
    varek::CallAsync(processor, []() -> MError& { throw 0; }); // return a value, or a pointer if that is meant
    varek::CallFor(std::chrono::seconds(1), processor, []() -> MError& { throw 0; }); // a call that may be given up returns a value
    varek::Post(new Owning); // this event owns something that would leak
    VAREK_TRACE(1, 2, 3); // a trace line records at most two numbers
    [] { VAREK_TRACE(1.5); }(); // a trace line records numbers, enumerations and pointers only
    failure.With(L"name", undescribed); // With takes numbers, pointers and texts
    filing(L"Tag", undescribed); // write void Describe(varek::Filing& filing, T& object) in its namespace
    filing(L"Tag", described, Described()); // the defaults of a described type stand in its own description
    error.AddParameter(L"name", 1.5); // varek::Raise(location, code).With(name, value) takes numbers of any width
    // clang-format on
}
