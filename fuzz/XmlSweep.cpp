// The document engine beside the literal parser, on more texts and edits than a test has time for.
//
//     xml-sweep [EDITS]    all families of texts, then so many random operations

#include "fuzz/XmlEditGenerator.h"
#include "fuzz/XmlExhaustiveTexts.h"
#include "fuzz/XmlHarness.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace
{

const std::size_t mostCharacters = 6;
const std::size_t mostFramedCharacters = 4;
const std::size_t longestWindow = 4096;
const long editsOfADocument = 40;

double Seconds()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

std::string Quoted(const std::wstring& text)
{
    std::string quoted;
    for (const wchar_t c : text)
        quoted += c >= 0x20 && c < 0x7F ? std::string(1, static_cast<char>(c))
                                        : "[" + std::to_string(static_cast<unsigned>(c)) + "]";
    return "'" + quoted + "'";
}

void Begin(const char* family)
{
    std::printf("%-56s", family);
    std::fflush(stdout);
}

/// Whether all of a family are as the literal parser has them.
template <class Work>
bool Texts(const char* family, const Work& work)
{
    Begin(family);
    XmlExhaustiveTexts texts;
    const double begin = Seconds();
    work(texts);
    std::printf("%10llu texts %6.1f s\n", static_cast<unsigned long long>(texts.Count()),
                Seconds() - begin);
    if (!texts.Differing().empty())
        std::printf("read otherwise than literally: %s\n", Quoted(texts.Differing()).c_str());
    return texts.Differing().empty();
}

bool Edits(long count)
{
    Begin("random edits, the index looked at after each");
    XmlEditGenerator generator(1);
    const double begin = Seconds();
    for (long done = 0; done < count; done += editsOfADocument) {
        const std::string input = generator.Input(editsOfADocument);
        const std::string broken = PlayXmlEdits(input);
        if (!broken.empty()) {
            std::printf("\n%s: %s\n", broken.c_str(), input.c_str());
            return false;
        }
    }
    std::printf("%10ld edits %6.1f s\n", count, Seconds() - begin);
    return true;
}

} // namespace

int main(int count, char** arguments)
{
    const long edits = count > 1 ? std::atol(arguments[1]) : 100000;
    bool same = Texts("every construct across every boundary",
                      [](XmlExhaustiveTexts& texts) { texts.Edges(longestWindow); });
    same &= Texts("up to 4 characters inside of each construct",
                  [](XmlExhaustiveTexts& texts) { texts.Framed(mostFramedCharacters); });
    same &= Edits(edits);
    same &= Texts("all texts of up to 6 characters",
                  [](XmlExhaustiveTexts& texts) { texts.All(mostCharacters); });
    return same ? EXIT_SUCCESS : EXIT_FAILURE;
}
