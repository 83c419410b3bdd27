// One mistake a number. Behind it stands what the compiler is to say.

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

void Misuse(MCommandProcessor& processor, varek::Filing& filing, MError& error)
{
#if MISTAKE == 1 // what is called takes no arguments: capture what it needs in a lambda
    varek::Call(processor, [](int) {});
#elif MISTAKE == 2  // return a value, or a pointer if that is meant
    static int number;
    varek::CallAsync(processor, []() -> int& { return number; });
#elif MISTAKE == 3  // this event owns something that would leak
    varek::Post(new Owning);
#elif MISTAKE == 4  // a trace line records at most two numbers
    VAREK_TRACE(1, 2, 3);
#elif MISTAKE == 5  // a trace line records numbers, enumerations and pointers only
    VAREK_TRACE(1.5);
#elif MISTAKE == 6  // With takes numbers, pointers and texts
    static MFlowLocation location(L"Class", L"Function");
    varek::Raise(location, L"Code").With(L"name", Undescribed()).Throw();
#elif MISTAKE == 7  // write void Describe(varek::Filing& filing, T& object) in its namespace
    Undescribed object;
    filing(L"Tag", object);
#elif MISTAKE == 8  // the defaults of a described type stand in its own description
    Described object;
    filing(L"Tag", object, Described());
#elif MISTAKE == 9  // what is called takes no arguments: capture what it needs in a lambda
    varek::Post([](int) {});
#elif MISTAKE == 10 // a call that may be given up returns a value
    varek::CallFor(std::chrono::seconds(1), processor, []() -> MError& {
        static MError e;
        return e;
    });
#elif MISTAKE == 11 // varek::Raise(location, code).With(name, value) takes numbers of any width
    error.AddParameter(L"name", 1.5);
#endif
    (void)processor, (void)filing, (void)error;
}
