// Inverses of the small matrices of Jacobians. `Number` is a double, or lanes of them.
#pragma once

namespace zurt {

/// Inverts m in place by cofactors; sets its determinant, developed along the first row. A singular matrix leaves no
/// numbers in m.
template <class Number>
inline __attribute__((always_inline)) void InvertMatrix(Number (&m)[2][2], Number& determinant) {
    determinant = m[0][0] * m[1][1] - m[0][1] * m[1][0];
    const Number scale = 1.0 / determinant;
    const Number first = m[0][0];
    m[0][0] = scale * m[1][1];
    m[1][1] = scale * first;
    m[0][1] *= -scale;
    m[1][0] *= -scale;
}

/// The same for three rows.
template <class Number>
inline __attribute__((always_inline)) void InvertMatrix(Number (&m)[3][3], Number& determinant) {
    const Number a = m[1][1] * m[2][2] - m[1][2] * m[2][1];
    const Number b = m[1][2] * m[2][0] - m[1][0] * m[2][2];
    const Number c = m[1][0] * m[2][1] - m[1][1] * m[2][0];
    determinant = m[0][0] * a + m[0][1] * b + m[0][2] * c;
    const Number scale = 1.0 / determinant;
    const Number adjugate[3][3] = {
        {a, m[0][2] * m[2][1] - m[0][1] * m[2][2], m[0][1] * m[1][2] - m[0][2] * m[1][1]},
        {b, m[0][0] * m[2][2] - m[0][2] * m[2][0], m[0][2] * m[1][0] - m[0][0] * m[1][2]},
        {c, m[0][1] * m[2][0] - m[0][0] * m[2][1], m[0][0] * m[1][1] - m[0][1] * m[1][0]}};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m[i][j] = scale * adjugate[i][j];
}

} // namespace zurt
