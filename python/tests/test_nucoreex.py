import itertools

import numpy as np
import pytest

import nucoreex as nx

DTYPES = {"Byte": np.int8, "UByte": np.uint8, "Short": np.int16, "UShort": np.uint16,
          "Int": np.int32, "UInt": np.uint32, "Float": np.float32, "Double": np.float64}


def fraction(x, data):
    """Source step of the value rule: a channel as a double fraction of its type's range."""
    x = x.astype(np.float64)
    if data in ("Float", "Double"):
        return x
    info = np.iinfo(DTYPES[data])
    if info.min == 0:
        return x / float(info.max)
    return np.where(x < 1, x * (1.0 / -info.min), x / float(info.max))


def expected(x, src, dst):
    """The documented rule for one channel, in numpy arithmetic."""
    if src == dst:
        return x.copy()
    v = fraction(x, src)
    if dst in ("Float", "Double"):
        return v.astype(DTYPES[dst])
    info = np.iinfo(DTYPES[dst])
    w = np.where(v > 0, v * float(info.max), v * float(-info.min)) if info.min else v * float(info.max)
    nan = np.isnan(w)
    w = np.where(w > info.max, info.max, np.where(info.min > w, info.min, np.trunc(np.where(nan, 0, w))))
    return np.where(nan, info.min if dst == "Int" else 0, w).astype(DTYPES[dst])


def samples(data):
    if data in ("Float", "Double"):
        f = DTYPES[data]
        return np.array([0.0, -0.0, 0.5, 0.999, 1.0, np.nextafter(f(1), f(2)), 1.5, -0.5, -1.0, -1.5,
                         0.0078125, -0.0078125, np.inf, -np.inf, np.nan, 1e30, -1e-30], f)
    info = np.iinfo(DTYPES[data])
    edges = [info.min, info.min + 1, -1, 0, 1, 2, 3, info.max // 2, info.max // 2 + 1, info.max - 1, info.max]
    rng = np.random.default_rng(5)
    return np.concatenate([np.array([e for e in edges if info.min <= e], DTYPES[data]),
                           rng.integers(info.min, info.max, 64, DTYPES[data], endpoint=True)])


def same_bits(a, b):
    return a.dtype == b.dtype and a.shape == b.shape and a.tobytes() == b.tobytes()


@pytest.mark.parametrize("src,dst", itertools.product(DTYPES, DTYPES))
def test_values_follow_the_rule(src, dst):
    x = samples(src)[None, :]
    assert same_bits(nx.convert(x, f"Lum/{src}", f"Lum/{dst}"), expected(x, src, dst))


def test_documented_examples():
    assert nx.convert(np.array([[255]], np.uint8), "Lum/UByte", "Lum/Float")[0, 0] == 1.0
    assert nx.convert(np.array([[-128]], np.int8), "Lum/Byte", "Lum/Short")[0, 0] == -32768
    assert nx.convert(np.array([[0.999]], np.float32), "Lum/Float", "Lum/UByte")[0, 0] == 254
    assert nx.convert(np.array([[np.nan]], np.float32), "Lum/Float", "Lum/Int")[0, 0] == -2**31


def test_layouts_move_channels_by_index():
    rgb = np.array([[[10, 20, 30]]], np.uint8)
    assert nx.convert(rgb, "RGB/UByte", "BGRA/UByte").tolist() == [[[30, 20, 10, 255]]]
    assert nx.convert(rgb, "BGR/UByte", "Lum/UByte").tolist() == [[30]]
    assert nx.convert(np.array([[7]], np.uint8), "Bayer2/UByte", "RGBA/Short").tolist() == [[[899] * 3 + [32767]]]
    assert nx.convert(rgb[..., :1].copy(), "Bayer1/UByte", "Bayer1/Float").shape == (1, 1)


def test_luma_target_of_another_type_keeps_its_alpha_unwritten():
    src = np.array([[[255, 0, 0, 255], [0, 0, 0, 0]]], np.uint8)
    assert nx.convert(src, "RGBA/UByte", "LumA/Byte").tolist() == [[[127, 0], [0, 0]]]
    out = np.full((1, 2, 2), 5, np.int8)
    assert nx.convert(src, "RGBA/UByte", "LumA/Byte", out=out) is out
    assert out.tolist() == [[[127, 5], [0, 5]]]
    assert nx.convert(src, "RGBA/UByte", "LumA/UByte").tolist() == [[[255, 255], [0, 0]]]


def test_every_carried_pair_runs():
    for src, dst in itertools.product(nx.formats(), repeat=2):
        (sp, sd), (dp, dd) = src.split("/"), dst.split("/")
        n = {"RGB": 3, "BGR": 3, "RGBA": 4, "BGRA": 4, "LumA": 2}
        x = np.ones((2, 3, n[sp]) if sp in n else (2, 3), DTYPES[sd])
        if dp.startswith("Bayer") and sp != dp:
            with pytest.raises(ValueError, match="not carried") as e:
                nx.convert(x, src, dst)
            assert isinstance(e.value.__cause__, nx.Error)
            assert e.value.__cause__.inner.function == "_ConvertTrgSwitch"
        else:
            y = nx.convert(x, src, dst)
            assert y.dtype == DTYPES[dd] and y.shape == ((2, 3, n[dp]) if dp in n else (2, 3))
    assert len(nx.formats()) == 80


def test_out_may_be_the_source():
    x = np.array([[[1.0, 2.0, 3.0, 4.0]]], np.float32)
    assert nx.convert(x, "RGBA/Float", "BGRA/Float", out=x) is x
    assert x.tolist() == [[[3.0, 2.0, 1.0, 4.0]]]


def test_bad_arguments_are_refused_and_nothing_written():
    x = np.zeros((2, 2, 3), np.uint8)
    out = np.full((2, 2), 9, np.float32)
    cases = [(TypeError, x.astype(np.int8), "RGB/UByte", "Lum/Float", out),
             (ValueError, x[..., 0].copy(), "RGB/UByte", "Lum/Float", out),
             (ValueError, np.zeros((2, 2, 6), np.uint8)[..., ::2], "RGB/UByte", "Lum/Float", out),
             (ValueError, x, "RGB/UByte", "Lum/Float", np.zeros((2, 4), np.float32)[:, ::2]),
             (TypeError, x, "RGB/UByte", "Lum/Float", out.astype(np.float64)),
             (ValueError, x, "RGB/UByte", "Lum/Float", np.zeros((2, 3), np.float32)),
             (ValueError, x, "RGB/UByte", "Lum/Float", np.lib.stride_tricks.as_strided(out, writeable=False)),
             (ValueError, x, "RGB/UByte", "Lum/Half", out),
             (ValueError, x, "YCbCr/UByte", "Lum/Float", out),
             (ValueError, np.zeros((2, 2), np.uint16), "Lum/Custom_12in16_LSB", "Lum/Float", out)]
    for error, array, src, dst, o in cases:
        with pytest.raises(error):
            nx.convert(array, src, dst, out=o)
    assert (out == 9).all()


def test_widen_custom():
    ten = np.array([[0, 1, 341, 512, 617, 1023, 1024, 65535]], np.uint16)
    assert nx.widen_custom(ten, "Custom_10in16_LSB").tolist() == [[0, 64, 21845, 32799, 39526, 65535, 63, 3972]]
    twelve = np.array([[[1, 2183], [4095, 4096]]], np.uint16)
    assert nx.widen_custom(twelve, nx.DataType.Custom_12in16_LSB, out=twelve) is twelve
    assert twelve.tolist() == [[[16, 34936], [65535, 15]]]
    with pytest.raises(nx.Error) as e:
        nx.widen_custom(ten, "Custom_10in16_MSB")
    assert e.value.message == "Error converting image custom data type"
    assert e.value.inner.message == "This image hasn't a supported custom data type 'Custom_10in16_MSB'"
    assert "inner: " in str(e.value) and e.value.inner.inner is None
