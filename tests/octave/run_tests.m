## Runs the tests, and the examples of the help:
##
##     octave-cli run_tests.m EXAMPLES PACKAGE
##
## PACKAGE is a folder with the package, or a list of installed packages, of which it is one.

1;

function check_examples (file)
  for block = strsplit (strtrim (fileread (file)), "\n\n")
    lines = strsplit (block{1}, "\n");
    run_example (lines{1}, lines(2:end));
  endfor
endfunction

function run_example (name, lines)
  for i = 1:numel (lines)
    if (i < numel (lines) && strncmp (lines{i + 1}, "=> ", 3))
      shown = lines{i + 1}(4:end);
      compare (eval (lines{i}), eval (shown), digits_of (shown), [name ": " lines{i}]);
    elseif (! strncmp (lines{i}, "=> ", 3))
      eval (lines{i});
    endif
  endfor
endfunction

## To half of the last digit that is shown.
function compare (got, shown, digits, where)
  if (iscell (shown) && isequal (size (got), size (shown)))
    cellfun (@(one, other) compare (one, other, digits, where), got, shown);
    return;
  endif
  tolerance = 1e-11;
  if (digits > 0)
    tolerance += 0.5 * 10 ^ -digits;
  endif
  if (! isequal (size (got), size (shown)) || any (abs (got - shown)(:) > tolerance))
    error ("%s", where);
  endif
endfunction

function digits = digits_of (shown)
  fractions = regexp (shown, '\.(\d+)', "tokens");
  digits = max ([0, cellfun(@(one) numel (one{1}), fractions)]);
endfunction

[examples, package] = argv (){end-1:end};
if (isfolder (package))
  addpath (package);
else
  pkg ("local_list", package);
  pkg ("load", "undula");
endif
check_examples (examples);
[passed, all] = test (fullfile (fileparts (mfilename ("fullpath")), "undula.tst"), "quiet");
printf ("%d of %d tests passed\n", passed, all);
exit (! (passed == all && all > 0));
