"""What ./run shows without a display comes out well, in the language that is named."""
import sys

from end_to_end import BUILD
from arrangement import Arrangement
from run import demonstrate


def main(language):
    folder = BUILD / "tests/e2e" / f"demonstration-{language}"
    with Arrangement(BUILD, folder, own_display=True, language=language).lay_out() as arrangement:
        return demonstrate(arrangement, folder / "pictures")


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
