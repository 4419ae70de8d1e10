// The grammar of CIF, as far as a look at a file needs it: blocks, single items and loops.
Vexa.cif = (function () {
    'use strict';

    var TAB = 9, LINE_FEED = 10, BLANK = 32, HASH = 35, SEMICOLON = 59, UNDERSCORE = 95;
    var DOUBLE_QUOTE = 34, SINGLE_QUOTE = 39;

    function isSpace(code) {
        return code === BLANK || code === LINE_FEED || code === TAB;
    }

    // A text field may be written in short lines, each continued by a backslash at its end.
    function unfolded(value) {
        return /^\\[ \t]*\n/.test(value) ?
            value.replace(/^\\[ \t]*\n/, '').replace(/\\[ \t]*\n/g, '') : value;
    }

    // Reads text, in steps, and tells handler what it finds:
    //   handler.block(name)        a data block begins
    //   handler.wants(name)        asked for every data name (in lower case), once where it stands:
    //                              whether its values are to be told
    //   handler.value(name, value) a value in the order of the file, one call for each row of a
    //                              loop; null for one that is unknown or does not apply
    // What is inside save frames is passed over. What is not well formed is passed over too, as
    // little of it as possible: this is a look at a file, not a check.
    //
    // The result has step(count): reads so many values, or to the end; true when there is an end.
    // cutOff is true then if the text ended inside a value.
    function scan(text, handler) {
        var position = 0;
        var inFrame = false;
        var name = null;    // of the single item whose value comes next; null if it is not wanted
        var columns = null; // names of the loop; null for those that are not wanted
        var inHead = false; // more names may follow
        var column = 0;
        var result = {step: step, cutOff: false};

        if (text.indexOf('\r') >= 0) {
            text = text.replace(/\r\n?/g, '\n');
        }

        function skipSpace() {
            while (position < text.length && isSpace(text.charCodeAt(position))) {
                position += 1;
            }
        }

        function endOfLine() {
            var end = text.indexOf('\n', position);
            return end < 0 ? text.length : end;
        }

        function readTextField() {
            var start = position + 1;
            var end = text.indexOf('\n;', position);
            if (end < 0) {
                result.cutOff = true;
                end = text.length;
            }
            position = end + 2;
            give(start, end, true);
        }

        // A quote ends a value only where white space follows. Three of a kind are CIF 2.
        function readQuoted(quote) {
            var triple = quote + quote + quote;
            var limit = endOfLine();
            var start = position + 1;
            var end = position;
            if (text.substr(position, 3) === triple && text.charAt(position + 3) !== '') {
                end = text.indexOf(triple, position + 3);
                if (end >= 0) {
                    start = position + 3;
                    position = end + 3;
                    give(start, end, false);
                    return;
                }
                end = position;
            }
            do {
                end = text.indexOf(quote, end + 1);
            } while (end >= 0 && end < limit && end + 1 < limit && !isSpace(text.charCodeAt(end + 1)));
            if (end < 0 || end > limit) {
                end = limit;
            }
            position = end + 1;
            give(start, end, false);
        }

        function readWord() {
            var start = position;
            while (position < text.length && !isSpace(text.charCodeAt(position))) {
                position += 1;
            }
            if (text.charCodeAt(start) === UNDERSCORE) {
                readName(text.substring(start, position).toLowerCase());
            } else if (!readKeyword(start)) {
                giveWord(start);
            }
        }

        function readName(found) {
            var wanted = !inFrame && handler.wants(found) ? found : null;
            if (inHead) {
                columns.push(wanted);
            } else {
                columns = null;
                name = wanted;
            }
        }

        // Only a word of five letters or more with an underscore at its place can be one.
        function readKeyword(start) {
            var word;
            if (text.charCodeAt(start + 4) !== UNDERSCORE && text.charCodeAt(start + 6) !== UNDERSCORE) {
                return false;
            }
            word = text.substring(start, position).toLowerCase();
            if (word === 'loop_') {
                begin([]);
            } else if (word.indexOf('data_') === 0 || word === 'global_') {
                begin(null);
                inFrame = false;
                handler.block(text.substring(start + 5, position));
            } else if (word.indexOf('save_') === 0) {
                begin(null);
                inFrame = word !== 'save_';
            } else {
                return false;
            }
            return true;
        }

        function begin(loop) {
            columns = loop;
            inHead = loop !== null;
            column = 0;
            name = null;
        }

        function giveWord(start) {
            var code = text.charCodeAt(start);
            var isNone = position === start + 1 && (code === 63 || code === 46);
            give(start, isNone ? -1 : position, false);
        }

        // Passes on the value between two places; nothing is copied that nobody wants. An end of -1
        // stands for no value.
        function give(start, end, isTextField) {
            var wanted = name;
            if (columns && columns.length) {
                wanted = columns[column];
                column = (column + 1) % columns.length;
            }
            inHead = false;
            name = null;
            if (wanted) {
                handler.value(wanted, end < 0 ? null : valueOf(text.substring(start, end), isTextField));
            }
        }

        function valueOf(value, isTextField) {
            value = isTextField ? unfolded(value) : value;
            return /^\s*[?.]?\s*$/.test(value) ? null : value;
        }

        function step(count) {
            var code;
            var end = count === undefined ? Infinity : count;
            for (; end > 0; end -= 1) {
                skipSpace();
                if (position >= text.length) {
                    return true;
                }
                code = text.charCodeAt(position);
                if (code === HASH) {
                    position = endOfLine();
                } else if (code === SEMICOLON && (position === 0 || text.charCodeAt(position - 1) === LINE_FEED)) {
                    readTextField();
                } else if (code === SINGLE_QUOTE || code === DOUBLE_QUOTE) {
                    readQuoted(text.charAt(position));
                } else {
                    readWord();
                }
            }
            return false;
        }

        return result;
    }

    return {scan: scan};
}());
