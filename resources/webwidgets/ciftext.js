// The markup of texts in CIFs, turned into plain text of one line.
Vexa.cifText = (function () {
    'use strict';

    var greek = {
        a: 'α', b: 'β', c: 'χ', d: 'δ', e: 'ε', f: 'φ', g: 'γ', h: 'η', i: 'ι', k: 'κ', l: 'λ', m: 'μ',
        n: 'ν', o: 'ο', p: 'π', q: 'θ', r: 'ρ', s: 'σ', t: 'τ', u: 'υ', w: 'ω', x: 'ξ', y: 'ψ', z: 'ζ'
    };
    // Combining marks, which follow their letter.
    var accents = {
        '\'': '\u0301', '`': '\u0300', '^': '\u0302', ',': '\u0327', '"': '\u0308', '~': '\u0303',
        ';': '\u0328', '>': '\u030b', '=': '\u0304', '.': '\u0307', '<': '\u030c', '(': '\u0306'
    };
    var letters = {
        '%a': 'å', '%A': 'Å', '?i': 'ı', '&s': 'ß', '&S': 'ẞ', '/o': 'ø', '/O': 'Ø',
        '/l': 'ł', '/L': 'Ł', '/d': 'đ', '/D': 'Đ'
    };
    var subscripts = '₀₁₂₃₄₅₆₇₈₉';
    var superscripts = '⁰¹²³⁴⁵⁶⁷⁸⁹';

    function shifted(digits, alphabet) {
        return digits.replace(/[0-9]/g, function (digit) {
            return alphabet.charAt(Number(digit));
        });
    }

    function greekLetter(letter) {
        var found = greek[letter.toLowerCase()];
        return found && (letter === letter.toLowerCase() ? found : found.toUpperCase());
    }

    // Lines of a text field are one text; what is set apart by more than a blank is not.
    function plain(text) {
        var result = text
            .replace(/\\(%[aA]|\?i|&[sS]|\/[oOlLdD])/g, function (whole, code) {
                return letters[code];
            })
            .replace(/\\%/g, '°')
            .replace(/\\(['`^,"~;>=.<(])([A-Za-zıœæ])/g, function (whole, mark, letter) {
                return letter + accents[mark];
            })
            .replace(/\\([a-zA-Z])/g, function (whole, letter) {
                return greekLetter(letter) || whole;
            })
            .replace(/\^([^\^\s]{1,20})\^/g, function (whole, inside) {
                return shifted(inside, superscripts).replace(/-/g, '⁻').replace(/\+/g, '⁺');
            })
            .replace(/~([^~\s]{1,20})~/g, function (whole, inside) {
                return shifted(inside, subscripts);
            })
            .replace(/<\/?(i|b|sub|sup|em|strong)>/gi, '')
            .replace(/<br ?\/?>/gi, ' ')
            .replace(/---/g, '—')
            .replace(/--/g, '–')
            .replace(/\+-/g, '±')
            .replace(/\s+/g, ' ')
            .replace(/^ | $/g, '');
        return result.normalize ? result.normalize('NFC') : result;
    }

    // "C9 H11 N O3" with its counts below the line.
    function formula(text) {
        return plain(text).replace(/([A-Za-z)\]])(\d+(?:\.\d+)?)/g, function (whole, symbol, count) {
            return count === '1' ? symbol : symbol + shifted(count, subscripts);
        }).replace(/([A-Za-z)₀-₉]) (?=[A-Z(])/g, '$1');
    }

    // A Hermann-Mauguin symbol with the second digit of a screw axis below the line.
    function spaceGroup(text) {
        return plain(text).replace(/_(?=\d)|[()]/g, '').split(' ').map(function (part) {
            return /^(21|31|32|41|42|43|61|62|63|64|65)(\/[a-z])?$/.test(part) ?
                part.charAt(0) + shifted(part.charAt(1), subscripts) + part.substring(2) : part;
        }).join(' ');
    }

    return {plain: plain, formula: formula, spaceGroup: spaceGroup};
}());
