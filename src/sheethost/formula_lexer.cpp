#include "sheethost/formula_lexer.h"

#include <array>
#include <charconv>
#include <utility>

#include "sheethost/formula.h"

namespace sheethost {

int ColumnNumber(std::string_view letters) {
    if (letters.empty() || letters.size() > 3) return 0;
    int column = 0;
    for (char c : letters) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c < 'A' || c > 'Z') return 0;
        column = column * 26 + (c - 'A' + 1);
    }
    return column <= kMaxColumn ? column : 0;
}

std::string ColumnLetters(int column) {
    if (column < 1 || column > kMaxColumn) return {};
    std::string letters;
    for (; column > 0; column = (column - 1) / 26) {
        letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
    }
    return letters;
}

namespace formula {
namespace {

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
// Bytes of UTF-8 sequences count as letters, so names and sheet names may hold any character.
bool IsNameStart(char c) {
    return IsLetter(c) || c == '_' || c == '\\' || (c & 0x80) != 0;
}
bool IsNameChar(char c) {
    return IsNameStart(c) || IsDigit(c) || c == '.' || c == '?';
}

char Upper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string UpperText(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) c = Upper(c);
    return upper;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (Upper(a[i]) != Upper(b[i])) return false;
    }
    return true;
}

// Reads the pieces of references from a fixed position; every reader returns how many characters
// it took, 0 when the text there is not what it reads.
class ReferenceReader {
  public:
    explicit ReferenceReader(std::string_view text) : text_(text) {}

    // "$B$3", "B3", "B$3", "$B3".
    std::size_t Cell(std::size_t at, ReferenceEnd& end) const {
        std::size_t used = ColumnPart(at, end);
        if (used == 0) return 0;
        const std::size_t rowUsed = RowPart(at + used, end);
        return rowUsed == 0 ? 0 : used + rowUsed;
    }

    // "$C" or "C" with up to three letters naming a column of the sheet.
    std::size_t ColumnPart(std::size_t at, ReferenceEnd& end) const {
        std::size_t i = at;
        const bool absolute = i < text_.size() && text_[i] == '$';
        if (absolute) ++i;
        const std::size_t start = i;
        while (i < text_.size() && IsLetter(text_[i])) ++i;
        const int column = ColumnNumber(text_.substr(start, i - start));
        if (column == 0) return 0;
        end.column = column;
        end.columnAbsolute = absolute;
        return i - at;
    }

    // "$5" or "5" naming a row of the sheet.
    std::size_t RowPart(std::size_t at, ReferenceEnd& end) const {
        std::size_t i = at;
        const bool absolute = i < text_.size() && text_[i] == '$';
        if (absolute) ++i;
        const std::size_t start = i;
        while (i < text_.size() && IsDigit(text_[i])) ++i;
        if (i == start || i - start > 7 || text_[start] == '0') return 0;
        int row = 0;
        std::from_chars(text_.data() + start, text_.data() + i, row);
        if (row > kMaxRow) return 0;
        end.row = row;
        end.rowAbsolute = absolute;
        return i - at;
    }

    // A whole reference at `at`: a cell or block, whole rows "5:7", whole columns "C:D".
    std::size_t Read(std::size_t at, Reference& reference) const {
        using Part = std::size_t (ReferenceReader::*)(std::size_t, ReferenceEnd&) const;
        for (Part part :
             {&ReferenceReader::Cell, &ReferenceReader::RowPart, &ReferenceReader::ColumnPart}) {
            ReferenceEnd first;
            const std::size_t firstUsed = (this->*part)(at, first);
            if (firstUsed == 0) continue;
            std::size_t used = firstUsed;
            ReferenceEnd last = first;
            const bool isRange = At(at + used) == ':';
            if (isRange) {
                const std::size_t lastUsed = (this->*part)(at + used + 1, last);
                if (lastUsed == 0) continue;
                used += 1 + lastUsed;
            } else if (part != &ReferenceReader::Cell) {
                continue;  // a lone row number is a number, a lone column a name
            }
            // "A1B" or "LOG10(" go on as names and functions.
            const char next = At(at + used);
            if (IsNameChar(next) || next == '(' || next == '$') continue;
            reference.first = first;
            reference.last = last;
            reference.isRange = isRange;
            return used;
        }
        return 0;
    }

  private:
    char At(std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

    std::string_view text_;
};

constexpr std::array<std::pair<std::string_view, ErrorValue>, 7> kErrorLiterals{{
    {"#NULL!", ErrorValue::kNull},
    {"#DIV/0!", ErrorValue::kDiv0},
    {"#VALUE!", ErrorValue::kValue},
    {"#REF!", ErrorValue::kRef},
    {"#NAME?", ErrorValue::kName},
    {"#NUM!", ErrorValue::kNum},
    {"#N/A", ErrorValue::kNA},
}};

class Lexer {
  public:
    explicit Lexer(std::string_view body) : body_(body), references_(body) {}

    std::optional<std::vector<Token>> Run() {
        std::vector<Token> tokens;
        // A token takes two characters or more but for the one-character punctuation.
        tokens.reserve(body_.size() / 2 + 1);
        for (SkipBlanks(); pos_ < body_.size(); SkipBlanks()) {
            const std::size_t start = pos_;
            Token& token = tokens.emplace_back();
            if (!Next(token)) return std::nullopt;
            token.source = body_.substr(start, pos_ - start);
        }
        return tokens;
    }

  private:
    char At(std::size_t i) const { return i < body_.size() ? body_[i] : '\0'; }

    void SkipBlanks() {
        while (pos_ < body_.size() &&
               (body_[pos_] == ' ' || body_[pos_] == '\n' || body_[pos_] == '\r'))
            ++pos_;
    }

    bool Next(Token& token) {
        const char c = body_[pos_];
        if (c == '"') return TextLiteral(token);
        if (c == '#') return ErrorLiteral(token);
        if (c == '(' || c == ')' || c == ',') {
            token.kind = c == '(' ? TokenKind::kOpenParen
                                  : (c == ')' ? TokenKind::kCloseParen : TokenKind::kComma);
            ++pos_;
            return true;
        }
        if (Operator(token)) return true;
        if (SheetPart(token)) return Qualified(token);
        if (Reference(token)) return true;
        if (IsDigit(c) || c == '.') return Number(token);
        if (IsNameStart(c)) return Word(token);
        return false;
    }

    bool TextLiteral(Token& token) {
        token.kind = TokenKind::kText;
        for (++pos_; pos_ < body_.size(); ++pos_) {
            if (body_[pos_] != '"') {
                token.text += body_[pos_];
            } else if (At(pos_ + 1) == '"') {
                token.text += '"';
                ++pos_;
            } else {
                ++pos_;
                return true;
            }
        }
        return false;  // unterminated
    }

    bool ErrorLiteral(Token& token) {
        for (const auto& [text, error] : kErrorLiterals) {
            if (EqualsIgnoringCase(body_.substr(pos_, text.size()), text)) {
                token.kind = TokenKind::kError;
                token.error = error;
                pos_ += text.size();
                return true;
            }
        }
        return false;
    }

    bool Operator(Token& token) {
        static constexpr std::array<std::string_view, 13> kOperators{
            "<>", "<=", ">=", "+", "-", "*", "/", "^", "&", "%", "=", "<", ">"};
        for (std::string_view op : kOperators) {
            if (body_.substr(pos_, op.size()) == op) {
                token.kind = TokenKind::kOperator;
                token.text = op;
                pos_ += op.size();
                return true;
            }
        }
        return false;
    }

    // "Sheet1!" or "'My Sheet'!" ("''" stands for one apostrophe inside the quotes).
    bool SheetPart(Token& token) {
        std::size_t i = pos_;
        std::string sheet;
        if (body_[i] == '\'') {
            for (++i;; ++i) {
                if (i >= body_.size()) return false;
                if (body_[i] != '\'') {
                    sheet += body_[i];
                } else if (At(i + 1) == '\'') {
                    sheet += '\'';
                    ++i;
                } else {
                    ++i;
                    break;
                }
            }
        } else {
            // Most words are no sheet name: the name is copied only once its "!" is seen.
            while (IsNameChar(At(i))) ++i;
            if (At(i) == '!') sheet = body_.substr(pos_, i - pos_);
        }
        if (sheet.empty() || At(i) != '!') return false;
        token.sheetPart = body_.substr(pos_, i + 1 - pos_);
        token.reference.sheet = std::move(sheet);
        pos_ = i + 1;
        return true;
    }

    // What may follow a sheet part: a reference, "#REF!" or a sheet-level name.
    bool Qualified(Token& token) {
        if (Reference(token)) return true;
        if (At(pos_) == '#') return ErrorLiteral(token) && token.error == ErrorValue::kRef;
        if (!IsNameStart(At(pos_))) return false;
        return Word(token) && token.kind == TokenKind::kName;
    }

    bool Reference(Token& token) {
        const std::size_t used = references_.Read(pos_, token.reference);
        if (used == 0) return false;
        token.kind = TokenKind::kReference;
        pos_ += used;
        return true;
    }

    bool Number(Token& token) {
        std::size_t i = pos_;
        while (IsDigit(At(i))) ++i;
        if (At(i) == '.') {
            ++i;
            while (IsDigit(At(i))) ++i;
        }
        if ((At(i) == 'E' || At(i) == 'e')) {
            std::size_t exponent = i + 1;
            if (At(exponent) == '+' || At(exponent) == '-') ++exponent;
            if (IsDigit(At(exponent))) {
                i = exponent;
                while (IsDigit(At(i))) ++i;
            }
        }
        if (i == pos_ || (i == pos_ + 1 && body_[pos_] == '.')) return false;
        // from_chars reads no leading "."; put the zero in front.
        const std::string digits =
            (body_[pos_] == '.' ? "0" : "") + std::string(body_.substr(pos_, i - pos_));
        const auto result =
            std::from_chars(digits.data(), digits.data() + digits.size(), token.number);
        if (result.ec != std::errc{}) return false;
        token.kind = TokenKind::kNumber;
        pos_ = i;
        return true;
    }

    // A function name when "(" follows at once, else TRUE, FALSE or a defined name.
    bool Word(Token& token) {
        std::size_t i = pos_;
        while (IsNameChar(At(i))) ++i;
        const std::string_view word = body_.substr(pos_, i - pos_);
        pos_ = i;
        if (At(i) == '(') {
            token.kind = TokenKind::kFunction;
            token.text = UpperText(word);
        } else if (token.sheetPart.empty() &&
                   (EqualsIgnoringCase(word, "TRUE") || EqualsIgnoringCase(word, "FALSE"))) {
            token.kind = TokenKind::kBoolean;
            token.boolean = Upper(word[0]) == 'T';
        } else {
            token.kind = TokenKind::kName;
            token.text = word;
        }
        return true;
    }

    std::string_view body_;
    ReferenceReader references_;
    std::size_t pos_ = 0;
};

}  // namespace

std::optional<std::vector<Token>> Tokenize(std::string_view body) {
    return Lexer(body).Run();
}

std::string ReferenceEndText(const ReferenceEnd& end) {
    std::string text;
    if (end.column != 0) {
        if (end.columnAbsolute) text += '$';
        text += ColumnLetters(end.column);
    }
    if (end.row != 0) {
        if (end.rowAbsolute) text += '$';
        text += std::to_string(end.row);
    }
    return text;
}

std::string ReferenceText(const ReferenceEnd& first, const ReferenceEnd& last, bool isRange) {
    std::string text = ReferenceEndText(first);
    if (isRange) text += ':' + ReferenceEndText(last);
    return text;
}

bool SameSheetName(std::string_view a, std::string_view b) {
    return EqualsIgnoringCase(a, b);
}

}  // namespace formula
}  // namespace sheethost
