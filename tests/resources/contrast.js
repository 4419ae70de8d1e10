// Contrast of every text in sight with what is behind it, by WCAG 2: the texts that have less than
// 4.5 (3 if they are large), each with its ratio. The window's frame is taken at its darkest, over a
// black desktop.
(function () {
    'use strict';

    function parse(colour) {
        var numbers = colour.match(/[\d.]+/g).map(Number);
        return {rgb: numbers.slice(0, 3), alpha: numbers.length > 3 ? numbers[3] : 1};
    }

    function over(colour, below) {
        return colour.rgb.map(function (value, i) {
            return value * colour.alpha + below[i] * (1 - colour.alpha);
        });
    }

    function luminance(rgb) {
        var linear = rgb.map(function (value) {
            var share = value / 255;
            return share <= 0.03928 ? share / 12.92 : Math.pow((share + 0.055) / 1.055, 2.4);
        });
        return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
    }

    function ratio(a, b) {
        var first = luminance(a), second = luminance(b);
        return (Math.max(first, second) + 0.05) / (Math.min(first, second) + 0.05);
    }

    // From white to light grey, nine tenths opaque.
    function frameBehind(box) {
        var grey = 0.9 * (255 - 63 * Math.min(1, (box.bottom + 40) / (window.innerHeight + 60)));
        return [grey, grey, grey];
    }

    // All colours that may be behind what is in a box of an element: a gradient has several.
    function behind(element, box) {
        var style = getComputedStyle(element);
        var below = element.parentElement ? behind(element.parentElement, box) :
            [frameBehind(box)];
        var gradient = style.backgroundImage.match(/gradient/) ? style.backgroundImage.match(/rgba?\([^)]*\)/g) : [];
        var layers = gradient.length ? gradient : [style.backgroundColor];
        return layers.map(parse).reduce(function (all, layer) {
            return all.concat(below.map(function (rgb) {
                return over(layer, rgb);
            }));
        }, []);
    }

    function hasText(element) {
        return Array.prototype.some.call(element.childNodes, function (node) {
            return node.nodeType === 3 && /\S/.test(node.nodeValue);
        });
    }

    // What is behind a sheet or cannot act need not be read.
    function counts(element) {
        var box = element.getBoundingClientRect();
        var shown = box.width > 0 && document.elementFromPoint(box.left + 2, box.top + box.height / 2);
        return shown && (shown === element || element.contains(shown)) && !element.disabled &&
            element.tagName !== 'SCRIPT' && element.tagName !== 'OPTION';
    }

    var low = [];
    Array.prototype.forEach.call(document.querySelectorAll('#page *'), function (element) {
        var style = getComputedStyle(element);
        var text = parse(style.color);
        var size = parseFloat(style.fontSize);
        var isLarge = size >= 24 || (size >= 18.6 && style.fontWeight === 'bold');
        var least;
        if (text.alpha > 0 && (hasText(element) || /SELECT|INPUT/.test(element.tagName)) && counts(element)) {
            least = Math.min.apply(null, behind(element, element.getBoundingClientRect())
                .map(ratio.bind(null, text.rgb)));
            if (least < (isLarge ? 3 : 4.5)) {
                low.push((element.id || element.textContent) + ' ' + least.toFixed(2));
            }
        }
    });
    return low.join('; ');
}());
