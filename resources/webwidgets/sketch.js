// A small picture of what a CIF is about: a molecule, a chain, a scattering curve.
Vexa.sketch = (function () {
    'use strict';

    var mostAtoms = 400;      // of a molecule: beyond, the picture tells nothing
    var mostPoints = 20000;   // of a chain
    var longestStep = 8;      // between neighbours of a chain, in angstrom

    var pointNames = {
        _atom_site_label: true, _atom_site_type_symbol: true,
        _atom_site_fract_x: true, _atom_site_fract_y: true, _atom_site_fract_z: true,
        _atom_site_cartn_x: true, _atom_site_cartn_y: true, _atom_site_cartn_z: true,
        _atom_site_label_atom_id: true, _atom_site_label_asym_id: true,
        _atom_site_pdbx_pdb_model_num: true,
        _sas_scan_intensity_momentum_transfer: true, _sas_scan_intensity_intensity: true
    };

    // Covalent radii in angstrom and colours of the commonest elements; others are taken for metals.
    var elements = {
        H: [0.31, '#b9c2c8'], D: [0.31, '#b9c2c8'], B: [0.84, '#c98a4b'], C: [0.76, '#46525e'],
        N: [0.71, '#2a55c8'], O: [0.66, '#c8281e'], F: [0.57, '#4f9d2f'], SI: [1.11, '#a98a5a'],
        P: [1.07, '#d97a10'], S: [1.05, '#b59a00'], CL: [1.02, '#2f9d3f'], SE: [1.2, '#c47a10'],
        BR: [1.2, '#8e2d1a'], I: [1.39, '#6a2d9a']
    };
    var metal = [1.45, '#0f6674'];

    // Keeps the values of pointNames as they come.
    function gatherer() {
        var columns = {};
        return {
            keep: function (key, value) {
                columns[key] = columns[key] || [];
                columns[key].push(value);
            },
            columns: columns
        };
    }

    function elementOf(columns, i) {
        var symbols = columns._atom_site_type_symbol;
        var symbol = (symbols || columns._atom_site_label || [])[i] || '';
        var letters = /^[A-Za-z]{1,2}/.exec(symbol);
        var name = letters ? letters[0].toUpperCase() : '';
        // What follows the element in a label may be a letter: HA, OW.
        return elements[name] || (symbols ? null : elements[name.charAt(0)]) || metal;
    }

    // Vectors of the cell's axes, or null.
    function axesOf(cell) {
        var cos = [cell.alpha, cell.beta, cell.gamma].map(function (angle) {
            return Math.cos(angle * Math.PI / 180);
        });
        var sinGamma = Math.sin(cell.gamma * Math.PI / 180);
        var x = (cos[0] - cos[1] * cos[2]) / sinGamma;
        var z = Math.sqrt(1 - cos[1] * cos[1] - x * x);
        var isCell = cell.a > 0 && cell.b > 0 && cell.c > 0 && z > 0;
        return isCell ? [[cell.a, 0, 0], [cell.b * cos[2], cell.b * sinGamma, 0],
            [cell.c * cos[1], cell.c * x, cell.c * z]] : null;
    }

    function positionsInCell(columns, axes) {
        var columnsOfAxes = [columns._atom_site_fract_x, columns._atom_site_fract_y,
            columns._atom_site_fract_z];
        return (columnsOfAxes[0] || []).slice(0, mostAtoms + 1).map(function (unused, i) {
            return [0, 1, 2].map(function (k) {
                return columnsOfAxes.reduce(function (sum, column, axis) {
                    return sum + parseFloat(column && column[i]) * axes[axis][k];
                }, 0);
            });
        });
    }

    function distance(p, q) {
        return Math.sqrt((p[0] - q[0]) * (p[0] - q[0]) + (p[1] - q[1]) * (p[1] - q[1]) +
            (p[2] - q[2]) * (p[2] - q[2]));
    }

    // Pairs of atoms that are as near as a bond is long.
    function bondsOf(atoms) {
        var bonds = [];
        atoms.forEach(function (atom, i) {
            atoms.slice(0, i).forEach(function (other) {
                var length = distance(atom.position, other.position);
                if (length > 0.6 && length < atom.element[0] + other.element[0] + 0.3) {
                    bonds.push([atom, other]);
                }
            });
        });
        return bonds;
    }

    // A molecule of the asymmetric unit, or null if its atoms do not hang together.
    function molecule(columns, cell) {
        var axes = axesOf(cell);
        var atoms = (axes ? positionsInCell(columns, axes) : []).map(function (position, i) {
            return {position: position, element: elementOf(columns, i)};
        }).filter(function (atom) {
            return atom.position.every(isFinite);
        });
        var bonds = atoms.length > mostAtoms ? [] : bondsOf(atoms);
        if (bonds.length < 3 || bonds.length < atoms.length / 2) {
            return null;
        }
        return {
            lines: bonds.map(function (bond) {
                return {points: [bond[0].position, bond[1].position], colour: '#7d8890'};
            }),
            dots: atoms.map(function (atom) {
                return {point: atom.position, size: atom.element[0], colour: atom.element[1]};
            })
        };
    }

    // One point for each residue of each chain, of the first model.
    function tracePoints(columns) {
        var names = columns._atom_site_label_atom_id || [];
        var chains = columns._atom_site_label_asym_id || [];
        var models = columns._atom_site_pdbx_pdb_model_num || [];
        var points = [];
        var seen = {};
        names.forEach(function (name, i) {
            if ((name === 'CA' || name === 'P') && models[i] === models[0] && points.length < mostPoints) {
                points.push({
                    chain: chains[i] || '',
                    position: ['x', 'y', 'z'].map(function (axis) {
                        return parseFloat((columns['_atom_site_cartn_' + axis] || [])[i]);
                    })
                });
            }
        });
        return points.filter(function (point) {
            var place = point.position.join(' ');
            var isNew = !seen[place];
            seen[place] = true;
            return isNew && point.position.every(isFinite);
        });
    }

    // From blue to red along the chain.
    function along(share) {
        return 'hsl(' + Math.round(225 - 225 * share) + ', 70%, 42%)';
    }

    function chain(columns) {
        var points = tracePoints(columns);
        var lines = points.slice(1).map(function (point, i) {
            return point.chain === points[i].chain &&
                distance(point.position, points[i].position) < longestStep ?
                {points: [points[i].position, point.position], colour: along(i / points.length)} : null;
        }).filter(Boolean);
        return lines.length < 8 ? null : {lines: lines, dots: []};
    }

    // Intensity over the momentum transfer, both with a logarithmic scale.
    function curve(columns) {
        var q = columns._sas_scan_intensity_momentum_transfer || [];
        var intensity = columns._sas_scan_intensity_intensity || [];
        var points = q.map(function (value, i) {
            return [Math.log(parseFloat(value)), -0.35 * Math.log(parseFloat(intensity[i])), 0];
        }).filter(function (point) {
            return point.every(isFinite);
        });
        return points.length < 10 ? null : {
            isFlat: true,
            lines: points.slice(1).map(function (point, i) {
                return {points: [points[i], point], colour: '#0f6674'};
            }),
            dots: []
        };
    }

    function allPoints(picture) {
        return picture.lines.reduce(function (points, line) {
            points.push(line.points[0], line.points[1]);
            return points;
        }, []);
    }

    function meanOf(points) {
        return [0, 1, 2].map(function (k) {
            return points.reduce(function (sum, point) {
                return sum + point[k];
            }, 0) / points.length;
        });
    }

    function product(p, q) {
        return p[0] * q[0] + p[1] * q[1] + p[2] * q[2];
    }

    // Direction in which points, as seen from their middle, reach farthest, at right angles to
    // another one: by repeated multiplication with the matrix of their second moments.
    function longAxis(points, other) {
        var axis = [0.577, 0.578, 0.579];
        function round() {
            var sum = [0, 0, 0];
            var overlap;
            var length;
            points.forEach(function (point) {
                var share = product(point, axis);
                sum = [sum[0] + share * point[0], sum[1] + share * point[1], sum[2] + share * point[2]];
            });
            overlap = other ? product(sum, other) : 0;
            axis = sum.map(function (value, k) {
                return value - (other ? overlap * other[k] : 0);
            });
            length = Math.sqrt(product(axis, axis)) || 1;
            axis = axis.map(function (value) {
                return value / length;
            });
        }
        for (var i = 0; i < 12; i += 1) {
            round();
        }
        return axis;
    }

    // The picture as it is seen against its shortest extent: maps a point to [x, y].
    function projection(picture) {
        var points = allPoints(picture);
        var middle = meanOf(points);
        var seen = points.map(function (point) {
            return [point[0] - middle[0], point[1] - middle[1], point[2] - middle[2]];
        });
        var right = picture.isFlat ? [1, 0, 0] : longAxis(seen, null);
        var down = picture.isFlat ? [0, 1, 0] : longAxis(seen, right);
        return function (point) {
            var from = [point[0] - middle[0], point[1] - middle[1], point[2] - middle[2]];
            return [product(from, right), product(from, down)];
        };
    }

    // kind: of the summary; cell: {a, b, c, alpha, beta, gamma} as numbers. The result is flat, with
    // both coordinates between 0 and 1, or null if there is nothing to be drawn:
    // {lines: [{from, to, colour}], dots: [{at, size, colour}]}.
    function draw(kind, columns, cell) {
        var picture = {
            'small-molecule': molecule,
            'macromolecule': chain,
            'scattering': curve
        }[kind];
        picture = picture ? picture(columns, cell) : null;
        return picture && flatten(picture, projection(picture));
    }

    function flatten(picture, project) {
        var places = allPoints(picture).map(project);
        var low = [Infinity, Infinity];
        var high = [-Infinity, -Infinity];
        var scale;
        places.forEach(function (place) {
            [0, 1].forEach(function (k) {
                low[k] = Math.min(low[k], place[k]);
                high[k] = Math.max(high[k], place[k]);
            });
        });
        scale = 1 / Math.max(high[0] - low[0], high[1] - low[1]);
        function fit(point) {
            return project(point).map(function (value, k) {
                return 0.5 + (value - (low[k] + high[k]) / 2) * scale;
            });
        }
        return {
            lines: picture.lines.map(function (line) {
                return {from: fit(line.points[0]), to: fit(line.points[1]), colour: line.colour};
            }),
            dots: picture.dots.map(function (dot) {
                return {at: fit(dot.point), size: dot.size * scale, colour: dot.colour};
            })
        };
    }

    // Fills a square canvas, sharply on displays with finer pixels too.
    function paint(canvas, drawing) {
        var size = Math.round(canvas.offsetWidth * (window.devicePixelRatio || 1));
        var margin = size * 0.08;
        var context = canvas.getContext('2d');
        canvas.width = size;
        canvas.height = size;
        function place(value) {
            return margin + value * (size - 2 * margin);
        }
        context.lineCap = 'round';
        context.lineWidth = Math.max(1, size / 40);
        drawing.lines.forEach(function (line) {
            context.strokeStyle = line.colour;
            context.beginPath();
            context.moveTo(place(line.from[0]), place(line.from[1]));
            context.lineTo(place(line.to[0]), place(line.to[1]));
            context.stroke();
        });
        drawing.dots.forEach(function (dot) {
            context.fillStyle = dot.colour;
            context.beginPath();
            context.arc(place(dot.at[0]), place(dot.at[1]),
                Math.max(1.2 * size / 56, dot.size * 0.35 * (size - 2 * margin)), 0, 2 * Math.PI);
            context.fill();
        });
    }

    return {pointNames: pointNames, gatherer: gatherer, draw: draw, paint: paint};
}());
