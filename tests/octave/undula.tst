%!shared x, w, rest
%! x = sin ((1:64)' .^ 1.5);
%! w = daublet (8);
%! rest = rem ((0:63)' * 7, 13) - 6;

## There and back, in all treatments and classes of numbers.
%!test
%! for back = {@(x) idwt(dwt (x, 3, w), 3, w), @(x) idwts(dwts (x, 3, "bs24"), 3, "bs24"), ...
%!             @(x) idwti(dwti (x, 2, "s8"), 2, "s8"), ...
%!             @(x) iwpt(wpt (x, [1, 0; 2, 2; 2, 3], "db4"), [1, 0; 2, 2; 2, 3], "d8")}
%!   assert (back{1} (x), x, 1e-10);
%!   assert (back{1} (x'), x', 1e-10);
%! endfor
%! assert (norm (dwt (rest, 4, w)), norm (rest), 1e-12 * norm (rest));
%! assert (dwt (int8 (rest), 2, w), dwt (rest, 2, w));
%! assert (dwt (single (rest), 2, w), dwt (rest, 2, w));
%! assert (dwt (rest > 0, 2, w), dwt (double (rest > 0), 2, w));
%! assert (dwt (1:8, 1, "haar"), dwt (double (1:8), 1, daublet (2)'));
%! assert (dwt (eye (4), 1, "haar"), dwt (full (eye (4)), 1, "haar"));

## An argument keeps its numbers, and a result is the caller's own.
%!test
%! before = x + 0;
%! y = dwt (x, 0, w);
%! y(1) = 1000;
%! assert (x, before);
%! t = wpt (x, 1, w);
%! t{1}(1) = 1000;
%! assert (x, before);

## Tables are cell columns; packets lie as the data does, also in front of the caller's function.
%!test
%! t = wpt (x', 2, "haar");
%! assert (size (t), [3, 1]);
%! assert (size (t{2}), [1, 64]);
%! assert (applytbl (t, @(p) p * 2){3}, 2 * t{3});
%! sizes = evaltbl (t, @rows)(:, 3);
%! assert (all (sizes == 1));
%! assert (extract_basis (t', [1, 0; 1, 1]), t{2});
%! assert (applytbl ({[1; 2]; [3; 4]}, @(p) -p), {[-1; -2]; [-3; -4]});
%! assert (put_subband2d ([1, 2; 3, 4], 1, 0, 1, 5), [1, 5; 3, 4]);
%! assert (size (dwt ([], 0, w)), [0, 1]);
%! assert (isnan (dwt ([NaN, 1], 1, "haar")), [true, true]);

## Filters where names are wanted.
%!test
%! assert (mother (0.7, 1, 2, daublet (4)), mother (0.7, 1, 2, "db2"));
%! assert (mother2d (0.3, 0.4, daublet (6), "V"), mother2d (0.3, 0.4, "d6", "V"));

## What is refused, and with which words.
%!test
%! cases = {@() dwt(1:6, 2, w), "invalid-level", "dwt: invalid level (argument 2: level)"
%!          @() dwt(1:8), "Wrong-number-of-Arguments", "dwt: Wrong number of Arguments"
%!          @() daublet(4, 4), "Wrong-number-of-Arguments", "daublet: Wrong number of Arguments"
%!          @() dwt(1:8, 1, "none"), "invalid-filter-wavelet-string", ...
%!          "dwt: invalid filter wavelet string (argument 3: wavelet)"
%!          @() mother(0.5, "shift", 0, w), "non-scalar-value", ...
%!          "mother: non-scalar value (argument 2: level)"
%!          @() dwt(sparse (1:8), 1, w), "no-such-value", "dwt: argument 1 (data) cannot be a sparse matrix"
%!          @() dwt(struct (), 1, w), "no-such-value", "dwt: argument 1 (data) cannot be of class struct"
%!          @() dwt(ones (2, 2, 2), 1, w), "no-such-value", ...
%!          "dwt: argument 1 (data) cannot be an array of 3 dimensions"
%!          @() best_basis({1:4, {"a"}}, @abs), "no-such-value", ...
%!          "best_basis: argument 1 (table) holds a value of class char in place of an array"
%!          @() father(0, ["haar"; "haar"]), "no-such-value", ...
%!          "father: argument 2 (wavelet) cannot be a text of several rows"
%!          @() best_basis(wpt (1:4, 1, w), @(c) [c, c]), "no-such-value", ...
%!          "best_basis: argument 2 (cost), its result must be one number"
%!          @() best_basis(wpt (1:4, 1, w), @() 1), "invalid-fun-call", ""
%!          @() undula_call("none"), "no-such-function", "undula_call: no function 'none'"};
%! for i = 1:rows (cases)
%!   try
%!     cases{i, 1} ();
%!     error ("case %d is not refused", i);
%!   catch err
%!     assert (regexprep (err.identifier, "^(Undula|Octave):", ""), cases{i, 2});
%!     assert (isempty (cases{i, 3}) || strcmp (err.message, cases{i, 3}), err.message);
%!   end_try_catch
%! endfor

## A user's error comes out unchanged, and a call within a call disturbs neither.
%!test
%! try
%!   best_basis (wpt (x, 2, w), @(c) error ("Mine:own", "own words %d", 7));
%! catch err
%! end_try_catch
%! assert (err.identifier, "Mine:own");
%! assert (err.message, "own words 7");
%! nested = @(c) sum (abs (idwt (dwt ([c, c], 1, "haar"), 1, "haar"))) / 2;
%! assert (best_basis (wpt (x, 4, "s8"), nested), best_basis (wpt (x, 4, "s8"), @(c) abs (c)));

## undula_call reaches the pack where another function has the name.
%!test
%! assert (undula_call ("dwt", x, 2, w), dwt (x, 2, w));

## Calls within calls end in an error of Octave's, not in a crash.
%!function y = descend (x)
%!  y = sum (best_basis (wpt (1:4, 1, "haar"), @(c) descend (c))(:));
%!endfunction
%!error <max_recursion_depth|nested too deeply> descend (1)
